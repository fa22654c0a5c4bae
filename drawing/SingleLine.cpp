#include "drawing/SingleLine.hpp"

#include <cstdint>

namespace quorvane {
namespace {

constexpr std::string_view kReplacement = "\uFFFD";
constexpr std::string_view kEllipsis = "…";

struct Character {
    std::size_t length = 1;  // bytes that it takes in the text
    std::uint32_t code = 0;
    bool isValid = false;
};

// Overlong forms, surrogates and numbers beyond Unicode count as broken; a broken sequence is one
// byte long, so that what follows it is read afresh.
Character characterAt(std::string_view text, std::size_t place) {
    const auto byte = [&](std::size_t index) -> std::uint32_t {
        return static_cast<unsigned char>(text[index]);
    };
    const std::uint32_t first = byte(place);
    if (first < 0x80) return {1, first, true};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || place + length > text.size()) return {};
    std::uint32_t code = first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(place + i) & 0xC0) != 0x80) return {};
        code = code << 6 | (byte(place + i) & 0x3F);
    }
    constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < kSmallest[length] || code > 0x10FFFF || isSurrogate) return {};
    return {length, code, true};
}

constexpr bool breaksLine(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029;
}

}  // namespace

std::string singleLine(std::string_view text, std::size_t longest) {
    std::string line;
    std::size_t place = 0;
    for (std::size_t count = 0; place < text.size(); ++count) {
        if (count == longest) return line.append(kEllipsis);
        const Character character = characterAt(text, place);
        if (!character.isValid)
            line += kReplacement;
        else if (breaksLine(character.code))
            line += ' ';
        else
            line += text.substr(place, character.length);
        place += character.length;
    }
    return line;
}

}  // namespace quorvane
