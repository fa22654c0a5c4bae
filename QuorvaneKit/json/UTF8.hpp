// Check for well-formed UTF-8.
#pragma once

#include <string_view>

namespace quorvane {

// Rejects what the standard rejects: overlong forms, surrogates, values above U+10FFFF, and
// truncated sequences.
bool isValidUTF8(std::string_view text);

}  // namespace quorvane
