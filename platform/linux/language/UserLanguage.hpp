// The user's languages, and their writing direction.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace quorvane {

// Whether a locale, such as "he_IL.UTF-8" or "pa_PK@arabic", has a language that is written from
// right to left.
bool isRightToLeftLocale(std::string_view locale);

// The user's preferred locales, best first: those of $LANGUAGE, then the locale of messages. Empty
// when that is unset, "C" or "POSIX", because programs then use their built-in texts.
std::vector<std::string> preferredLocales();

// A locale's language and country in the form used outside the C library: "zh-CN" for
// "zh_CN.UTF-8".
std::string languageTag(std::string_view locale);

}  // namespace quorvane
