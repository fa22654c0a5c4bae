#include "QuorvaneKit/json/UTF8.hpp"

#include <cstdint>
#include <cstring>

#include "platform/Character.hpp"

namespace quorvane {

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

}  // namespace quorvane
