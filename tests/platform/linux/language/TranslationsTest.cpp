// The built table of texts, and a user's languages.
#include "platform/linux/language/Translations.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "AddOnKit/card/PlayerStrings.hpp"
#include "platform/linux/language/UserLanguage.hpp"

namespace quorvane {
namespace {

constexpr const char* kLanguages[] = {"ar", "de", "en", "es", "fr", "ja", "zh_CN"};

std::string text(const std::vector<std::string>& locales, const std::string& key) {
    return Translations{locales}.text(key);
}

TEST(Translations, HaveEveryTextWithItsCommentInEachLanguage) {
    std::set<std::string> play;
    for (const char* language : kLanguages) {
        std::ostringstream source;
        source << std::ifstream{std::string{QUORVANE_PO_FOLDER "/"} + language + ".po"}.rdbuf();
        for (const auto& [key, comment] : PlayerStrings::kAll) {
            const std::string stored = std::string{"#. "} + comment + "\nmsgid \"" + key +
                                       "\"\nmsgstr \"" + text({language}, key) + "\"\n";
            EXPECT_NE(source.str().find(stored), std::string::npos) << language << ": " << stored;
        }
        play.insert(text({language}, "Play"));
    }
    EXPECT_EQ(play.size(), std::size(kLanguages));
}

TEST(Translations, AreThoseOfTheFirstLanguageThatHasThem) {
    EXPECT_EQ(text({"de_AT.UTF-8@euro"}, "Play"), "Wiedergabe");
    EXPECT_EQ(text({"zh_TW.UTF-8"}, "Play"), "Play");
    EXPECT_EQ(text({"nl", "fr_CA", "de"}, "Play"), "Lecture");
    EXPECT_EQ(text({"de"}, "New Key"), "New Key");
}

TEST(UserLanguages, HaveTheirDirection) {
    for (const char* locale : {"ar", "he_IL.UTF-8", "fa_IR@persian", "ks_IN@arabic"})
        EXPECT_TRUE(isRightToLeftLocale(locale)) << locale;
    for (const char* locale : {"", "C.UTF-8", "de_DE@euro", "arn_CL", "sd_IN@devanagari"})
        EXPECT_FALSE(isRightToLeftLocale(locale)) << locale;
}

TEST(UserLanguages, AreReadFromTheEnvironment) {
    using Locales = std::vector<std::string>;
    for (const char* name : {"LC_MESSAGES", "LC_ALL", "LANGUAGE"}) setenv(name, "", 1);
    setenv("LANG", "de_DE", 1);
    EXPECT_EQ(preferredLocales(), Locales{"de_DE"});
    setenv("LC_MESSAGES", "ar_EG", 1);
    setenv("LANGUAGE", ":fr_CA::en:", 1);
    EXPECT_EQ(preferredLocales(), (Locales{"fr_CA", "en", "ar_EG"}));
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(preferredLocales(), Locales{});
    EXPECT_EQ(languageTag("zh_CN.UTF-8"), "zh-CN");
}

}  // namespace
}  // namespace quorvane
