// The base direction of a line of text.
#pragma once

#include <string_view>

namespace quorvane {

// Whether the text reads from right to left, by its first character with a strong direction as in
// the Unicode bidirectional algorithm; `otherwise` for text without such a character. Pure.
bool readsRightToLeft(std::string_view text, bool otherwise);

}  // namespace quorvane
