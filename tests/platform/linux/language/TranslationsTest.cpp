// The catalogues of the bundle, as built, and damaged ones.
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

std::string contents(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream{path, std::ios::binary}.rdbuf();
    return text.str();
}

std::string text(const char* locale, const PlayerStrings::Entry& entry) {
    return Translations{QUORVANE_LOCALE_FOLDER, {locale}}.text(entry.key);
}

TEST(Translations, HaveEveryTextWithItsCommentInEachLanguage) {
    std::set<std::string> play;
    for (const char* language : kLanguages) {
        const std::string source =
            contents(std::filesystem::path{QUORVANE_PO_FOLDER} / (std::string{language} + ".po"));
        const auto catalogue = MessageCatalogue::parse(
            bytesOf(contents(std::filesystem::path{QUORVANE_LOCALE_FOLDER} / language /
                             "LC_MESSAGES" / "quorvane-lock-screen.mo")));
        ASSERT_TRUE(catalogue) << language;
        for (const PlayerStrings::Entry& entry : PlayerStrings::kAll) {
            EXPECT_TRUE(catalogue->find(entry.key)) << language << ": " << entry.key;
            const std::string stored =
                std::string{"#. "} + entry.comment + "\nmsgid \"" + entry.key + "\"\n";
            EXPECT_NE(source.find(stored), std::string::npos) << language << ": " << stored;
        }
        if (const std::string* found = catalogue->find("Play")) play.insert(*found);
    }
    EXPECT_EQ(play.size(), std::size(kLanguages));
    EXPECT_EQ(text("ar", PlayerStrings::kPlay), "تشغيل");
    EXPECT_EQ(text("en", PlayerStrings::kRemoveLove), "Remove Love");
}

TEST(Translations, AreThoseOfTheFirstLanguageThatHasThem) {
    using PlayerStrings::kPlay;
    EXPECT_EQ(text("de_AT.UTF-8@euro", kPlay), "Wiedergabe");
    EXPECT_EQ(text("zh_CN.GB18030", kPlay), "播放");
    EXPECT_EQ(text("zh_TW.UTF-8", kPlay), "Play");
    EXPECT_EQ(text("../locale/de", kPlay), "Play");
    const auto inOrder = [](std::vector<std::string> locales) {
        return Translations{QUORVANE_LOCALE_FOLDER, locales}.text("Play");
    };
    EXPECT_EQ(inOrder({"nl", "fr_CA", "de"}), "Lecture");
    EXPECT_EQ(inOrder({}), "Play");
    EXPECT_EQ((Translations{QUORVANE_LOCALE_FOLDER, {"de"}}.text("New Key")), "New Key");
    EXPECT_EQ((Translations{"/nonexistent", {"de"}}.text("Play")), "Play");
}

TEST(MessageCatalogue, RefusesDamagedFiles) {
    const std::string file = contents(std::filesystem::path{QUORVANE_LOCALE_FOLDER} /
                                      "de/LC_MESSAGES/quorvane-lock-screen.mo");
    for (std::size_t size = 0; size + 1 < file.size(); ++size)  // its last byte ends the last text
        EXPECT_FALSE(MessageCatalogue::parse(bytesOf(file.substr(0, size)))) << size;
    for (std::size_t place = 0; place < 20; ++place) {
        std::string damaged = file;
        damaged[place] = static_cast<char>(~damaged[place]);
        (void)MessageCatalogue::parse(bytesOf(damaged));  // must stay inside the file
        EXPECT_TRUE(place >= 4 || !MessageCatalogue::parse(bytesOf(damaged)));
    }
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
