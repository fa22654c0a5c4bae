// Text from outside made fit to be drawn on one line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace quorvane {

// More characters than any title that is meant to be read.
inline constexpr std::size_t kLongestLine = 400;

// Valid UTF-8 of at most `longest` characters: every broken sequence becomes U+FFFD, every control
// character and line separator a space, and text that is cut ends in an ellipsis. Works in one
// pass over what it keeps, whatever follows.
std::string singleLine(std::string_view text, std::size_t longest = kLongestLine);

}  // namespace quorvane
