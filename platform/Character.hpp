// The characters of UTF-8 text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace quorvane {

struct Character {
    std::size_t length = 1;  // its bytes in the text
    std::uint32_t code = 0;
    bool isValid = false;
};

// The character that begins at `place`, which is inside the text. Overlong forms, surrogates and
// numbers beyond Unicode are invalid. An invalid character is one byte long, so that decoding
// continues at the next byte.
Character characterAt(std::string_view text, std::size_t place);

// Whether every character is valid.
bool isValidUTF8(std::string_view text);

// Whether the number is a control character's: C0, DEL or C1. A terminal obeys all of them.
constexpr bool isControl(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// The text with "?" for its control characters, so that an untrusted one can be printed to a
// terminal.
std::string printable(std::string_view text);

}  // namespace quorvane
