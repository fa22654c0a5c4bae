#include "QuorvaneKit/json/UTF8.hpp"

#include <cstdint>
#include <cstring>

namespace quorvane {
namespace {

// Length of the first sequence of `text`, which is not empty; 0 if it is ill-formed. The bounds of
// the second byte exclude overlong forms, surrogates and values that are too large.
std::size_t sequenceLength(std::string_view text) {
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned lead = byteAt(0);
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return 0;
    const std::size_t length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    if (text.size() < length) return 0;
    const unsigned least = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned greatest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (byteAt(1) < least || byteAt(1) > greatest) return 0;
    for (std::size_t index = 2; index < length; ++index)
        if ((byteAt(index) & 0xC0) != 0x80) return 0;
    return length;
}

}  // namespace

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
        const std::size_t length = sequenceLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

}  // namespace quorvane
