// What the user's language means for the card's layout.
#pragma once

#include <string_view>

namespace quorvane {

// Whether a locale's name, such as "he_IL.UTF-8" or "pa_PK@arabic", is of a language that is
// written from right to left.
bool isRightToLeftLocale(std::string_view locale);

// The locale of messages in this process's environment; "" when none is set.
std::string_view localeOfMessages();

}  // namespace quorvane
