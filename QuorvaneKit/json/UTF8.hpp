// Whether text is well-formed UTF-8.
#pragma once

#include <string_view>

namespace quorvane {

// Refuses what the standard refuses: overlong forms, surrogates, values past U+10FFFF, and
// sequences cut short.
bool isValidUTF8(std::string_view text);

}  // namespace quorvane
