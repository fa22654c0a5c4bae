#include "platform/linux/UserLanguage.hpp"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace quorvane {
namespace {

// Two- and three-letter codes of the languages with locales on Linux.
constexpr std::string_view kRightToLeftLanguages[] = {
    "ar",  "arc", "azb", "ckb", "dv", "fa",  "glk", "he", "iw", "ks",
    "mzn", "nqo", "pnb", "ps",  "sd", "syr", "ug",  "ur", "yi", "rhg"};

}  // namespace

bool isRightToLeftLocale(std::string_view locale) {
    // Some languages are written in several ways; the modifier tells.
    if (locale.ends_with("@arabic") || locale.ends_with("@hebrew")) return true;
    if (locale.ends_with("@latin") || locale.ends_with("@devanagari")) return false;
    const auto language = locale.substr(0, locale.find_first_of("_.@"));
    return std::ranges::find(kRightToLeftLanguages, language) != std::end(kRightToLeftLanguages);
}

std::string_view localeOfMessages() {
    // In this order, the first that is set and not empty.
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* value = std::getenv(name); value && *value) return value;
    return {};
}

}  // namespace quorvane
