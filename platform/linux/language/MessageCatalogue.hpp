// Catalogue of translated texts, as gettext's msgfmt compiles it. This class reads it because the C
// library would need the user's locale to be installed, and set for the whole process.
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
    // Returns nullopt when the bytes are damaged or are not a catalogue in this machine's byte
    // order.
    static std::optional<MessageCatalogue> parse(ByteView file);

    // Null when there is no translation.
    const std::string* find(std::string_view key) const;

private:
    std::map<std::string, std::string, std::less<>> texts_;
};

}  // namespace quorvane
