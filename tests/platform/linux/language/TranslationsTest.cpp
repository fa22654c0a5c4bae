// The table of texts, as built, and the languages of a user.
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
    EXPECT_EQ(text({"ar"}, "Play"), "تشغيل");
    EXPECT_EQ(text({"en"}, PlayerStrings::kRemoveLove.key), "Remove Love");
}

TEST(Translations, AreThoseOfTheFirstLanguageThatHasThem) {
    EXPECT_EQ(text({"de_AT.UTF-8@euro"}, "Play"), "Wiedergabe");
    EXPECT_EQ(text({"zh_CN.GB18030"}, "Play"), "播放");
    EXPECT_EQ(text({"zh_TW.UTF-8"}, "Play"), "Play");
    EXPECT_EQ(text({"nl", "fr_CA", "de"}, "Play"), "Lecture");
    EXPECT_EQ(text({}, "Play"), "Play");
    EXPECT_EQ(text({"de"}, "New Key"), "New Key");
}

TEST(UserLanguages, HaveTheirDirection) {
    for (const char* locale : {"ar", "ar_EG.UTF-8", "he_IL", "iw_IL", "fa_IR@persian", "ur_PK",
                               "ckb_IQ.UTF-8", "ks_IN@arabic", "pa_PK@arabic"})
        EXPECT_TRUE(isRightToLeftLocale(locale)) << locale;
    for (const char* locale : {"", "C", "C.UTF-8", "en_US.UTF-8", "de_DE@euro", "az_AZ", "arn_CL",
                               "sd_IN@devanagari", "hebrew"})
        EXPECT_FALSE(isRightToLeftLocale(locale)) << locale;
}

TEST(UserLanguages, AreReadFromTheEnvironment) {
    using Locales = std::vector<std::string>;
    setenv("LANG", "de_DE", 1);
    unsetenv("LC_MESSAGES");
    unsetenv("LANGUAGE");
    setenv("LC_ALL", "", 1);
    EXPECT_EQ(preferredLocales(), Locales{"de_DE"});
    setenv("LC_MESSAGES", "ar_EG", 1);
    EXPECT_EQ(preferredLocales(), Locales{"ar_EG"});
    setenv("LANGUAGE", ":fr_CA::en:", 1);
    EXPECT_EQ(preferredLocales(), (Locales{"fr_CA", "en", "ar_EG"}));
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(preferredLocales(), Locales{});

    EXPECT_EQ(catalogueNames("sr_RS.UTF-8@latin"),
              (Locales{"sr_RS@latin", "sr@latin", "sr_RS", "sr"}));
    EXPECT_EQ(catalogueNames("ja"), Locales{"ja"});
    EXPECT_EQ(languageTag("zh_CN.UTF-8"), "zh-CN");
}

}  // namespace
}  // namespace quorvane
