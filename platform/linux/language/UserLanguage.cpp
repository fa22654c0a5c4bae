#include "platform/linux/language/UserLanguage.hpp"

#include <algorithm>
#include <iterator>

#include "platform/linux/files/Environment.hpp"

namespace quorvane {
namespace {

// Two- and three-letter codes of the languages with locales on Linux.
constexpr std::string_view kRightToLeftLanguages[] = {
    "ar",  "arc", "azb", "ckb", "dv", "fa",  "glk", "he", "iw", "ks",
    "mzn", "nqo", "pnb", "ps",  "sd", "syr", "ug",  "ur", "yi", "rhg"};

// Language and country; codeset and modifier are left out.
std::string_view withoutSuffixes(std::string_view locale) {
    return locale.substr(0, locale.find_first_of(".@"));
}

// The locale of messages in this process's environment; "" when none is set.
std::string_view localeOfMessages() {
    // Use the first that is set and not empty.
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const auto value = environmentVariable(name); !value.empty()) return value;
    return {};
}

}  // namespace

bool isRightToLeftLocale(std::string_view locale) {
    // Some languages use several scripts; the modifier names the script.
    if (locale.ends_with("@arabic") || locale.ends_with("@hebrew")) return true;
    if (locale.ends_with("@latin") || locale.ends_with("@devanagari")) return false;
    const auto language = locale.substr(0, locale.find_first_of("_.@"));
    return std::ranges::find(kRightToLeftLanguages, language) != std::end(kRightToLeftLanguages);
}

std::vector<std::string> preferredLocales() {
    const std::string_view locale = localeOfMessages();
    if (locale.empty() || locale == "C" || locale == "POSIX") return {};
    std::vector<std::string> locales;
    for (auto rest = environmentVariable("LANGUAGE"); !rest.empty();) {
        const auto name = rest.substr(0, rest.find(':'));
        if (!name.empty()) locales.emplace_back(name);
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
    locales.emplace_back(locale);
    return locales;
}

std::string languageTag(std::string_view locale) {
    std::string tag{withoutSuffixes(locale)};
    std::ranges::replace(tag, '_', '-');
    return tag;
}

}  // namespace quorvane
