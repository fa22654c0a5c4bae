// Base64 as a program without a library of its own for it would decode it: one table, a letter at a
// time. For rivals, which would otherwise profit from this project's decoder.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "platform/Bytes.hpp"

namespace quorvane {

// The text is known to be well-formed.
inline Bytes decodePlainBase64(std::string_view text) {
    static const auto values = [] {
        std::array<std::uint8_t, 256> table{};
        std::uint8_t value = 0;
        for (const char letter :
             std::string_view{"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"})
            table[static_cast<unsigned char>(letter)] = value++;
        return table;
    }();
    while (text.ends_with('=')) text.remove_suffix(1);
    Bytes bytes(text.size() * 3 / 4);
    std::byte* out = bytes.data();
    const auto value = [&](std::size_t place) -> std::uint32_t {
        return place < text.size() ? values[static_cast<unsigned char>(text[place])] : 0;
    };
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const std::uint32_t group =
            value(i) << 18 | value(i + 1) << 12 | value(i + 2) << 6 | value(i + 3);
        for (int shift = 16; shift >= 0 && out != bytes.data() + bytes.size(); shift -= 8)
            *out++ = static_cast<std::byte>(group >> shift);
    }
    return bytes;
}

}  // namespace quorvane
