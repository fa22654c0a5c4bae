#include "platform/Character.hpp"

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

}  // namespace quorvane
