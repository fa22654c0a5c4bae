// The decoding of one character of UTF-8 text.
#pragma once

#include <cstddef>
#include <cstdint>
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

}  // namespace quorvane
