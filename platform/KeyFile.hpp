// Text files with groups "[Group]" of lines "key=value", such as desktop files and KDE's settings.
#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

#include "platform/Trimmed.hpp"

namespace quorvane {

// The first value of the key in the group, which is written with its brackets.
inline std::optional<std::string_view> keyFileValue(std::string_view text, std::string_view group,
                                                    std::string_view key) {
    bool isInGroup = false;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[')) isInGroup = line == group;
        const std::size_t equals = line.find('=');
        if (isInGroup && equals != line.npos && trimmed(line.substr(0, equals)) == key)
            return trimmed(line.substr(equals + 1));
    }
    return std::nullopt;
}

}  // namespace quorvane
