#include "platform/Character.hpp"

#include <cstring>

namespace quorvane {

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

bool isValidUTF8(std::string_view text) {
    constexpr std::uint64_t kTopBits = 0x8080'8080'8080'8080;
    while (!text.empty()) {
        std::uint64_t word = 0;
        while (text.size() >= sizeof word) {
            std::memcpy(&word, text.data(), sizeof word);
            if ((word & kTopBits) != 0) break;
            text.remove_prefix(sizeof word);
        }
        if (text.empty()) break;
        const Character character = characterAt(text, 0);
        if (!character.isValid) return false;
        text.remove_prefix(character.length);
    }
    return true;
}

std::string printable(std::string_view text) {
    std::string result;
    for (std::size_t place = 0; place < text.size();) {
        const Character character = characterAt(text, place);
        if (character.isValid && isControl(character.code))
            result += '?';
        else
            result += text.substr(place, character.length);
        place += character.length;
    }
    return result;
}

}  // namespace quorvane
