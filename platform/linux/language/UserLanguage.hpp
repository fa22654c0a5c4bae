// Which languages the user reads, and what that means for the card's layout.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

// Whether a locale's name, such as "he_IL.UTF-8" or "pa_PK@arabic", is of a language that is
// written from right to left.
bool isRightToLeftLocale(std::string_view locale);

// The locale of messages in this process's environment; "" when none is set.
std::string_view localeOfMessages();

// The locales whose texts the user wants, best first: those of $LANGUAGE, then that of messages.
// Where messages are the programs' own, as in the locale "C", nobody is asked.
std::vector<std::string> preferredLocales();

// A locale's language and country as they are named outside the C library: "zh-CN" for
// "zh_CN.UTF-8".
std::string languageTag(std::string_view locale);

// Under which names a locale's texts may be found, the most special first: for "sr_RS.UTF-8@latin"
// these are "sr_RS@latin", "sr@latin", "sr_RS" and "sr".
std::vector<std::string> catalogueNames(std::string_view locale);

}  // namespace quorvane
