// Text with its ASCII letters in lower case, for names that are compared without regard to case.
#pragma once

#include <string>
#include <string_view>

namespace quorvane {

inline std::string lowerCase(std::string_view text) {
    std::string lower{text};
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    return lower;
}

}  // namespace quorvane
