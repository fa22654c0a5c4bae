// Sanitising of external text for drawing on one line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane {

// Longer than any title meant to be read, in characters.
inline constexpr std::size_t kLongestLine = 400;

// Returns valid UTF-8 of at most kLongestLine characters and, if text was cut, an ellipsis. Every
// invalid byte becomes U+FFFD; every control character and line separator becomes a space. Reads
// only the part of the text that it keeps, in one pass.
std::string singleLine(std::string_view text);

}  // namespace quorvane
