// A catalogue of translated texts, as gettext's msgfmt compiles it. It is read here and not through
// the C library, which would need the user's locale to be installed and to be set for the whole
// process.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

// A plain value; its texts are in UTF-8.
class MessageCatalogue {
public:
    // Nothing when the bytes are no catalogue of this machine's byte order, or a damaged one.
    static std::optional<MessageCatalogue> parse(ByteView file);

    // Null when there is no translation.
    const std::string* find(std::string_view key) const;

private:
    std::map<std::string, std::string, std::less<>> texts_;
};

}  // namespace quorvane
