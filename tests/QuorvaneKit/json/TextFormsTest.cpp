// Bytes and dates as text.
#include <gtest/gtest.h>

#include <random>
#include <ranges>

#include "QuorvaneKit/json/Base64.hpp"
#include "QuorvaneKit/json/ISO8601Date.hpp"

namespace quorvane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

std::string encoded(ByteView bytes) {
    Bytes text;
    appendBase64(text, bytes);
    return std::string{textOf(text)};
}

TEST(Base64, EachLetterHasItsSixBitsInEachPlace) {
    constexpr std::string_view kLetters =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (unsigned value = 0; value < 64; ++value)
        for (unsigned place = 0; place < 4; ++place) {
            std::string text = "AAAA";
            text[place] = kLetters[value];
            const unsigned bits = value << (18 - 6 * place);
            const Bytes bytes{std::byte(bits >> 16), std::byte(bits >> 8), std::byte(bits)};
            EXPECT_EQ(encoded(bytes), text);
            EXPECT_EQ(decodeBase64(text), bytes) << text;
        }
}

TEST(Base64, EveryLengthComesBack) {
    std::mt19937 random{20260101};
    for (std::size_t size = 0; size < 300; ++size) {
        Bytes bytes;
        for (std::size_t index = 0; index < size; ++index)
            bytes.push_back(static_cast<std::byte>(random()));
        const std::string text = encoded(bytes);
        ASSERT_EQ(text.size(), base64Length(size));
        ASSERT_EQ(decodeBase64(text), bytes);
    }
}

TEST(Base64, RefusesWhatIsNotWholeGroupsOfLetters) {
    constexpr std::string_view kTexts =
        "A|AA|AAA|AAAAA|=|==|====|A===|A=AA|AA=A|AA=|AAA==|AAAA=|AAAA====|AA==AAAA|AAA=AAA=|AA A"
        "| AAAA|AAAA\n|AA-_|AA\xC3\xA9";
    for (const auto part : std::views::split(kTexts, '|'))
        EXPECT_EQ(decodeBase64(std::string_view{part}), std::nullopt) << std::string_view{part};
    EXPECT_EQ(decodeBase64(std::string_view{"AA\0A", 4}), std::nullopt);
    // The unused bits of the last letter before the padding are ignored.
    EXPECT_EQ(decodeBase64("AB=="), Bytes{std::byte{0}});
}

TEST(ISO8601Date, ReadsAndWritesDatesOfAllKinds) {
    struct Row {
        std::int64_t time;
        std::string_view text;
    };
    for (const auto& [time, text] :
         {Row{0, "1970-01-01T00:00:00Z"}, Row{-1, "1969-12-31T23:59:59Z"},
          Row{951'827'696, "2000-02-29T12:34:56Z"}, Row{1'767'225'599, "2025-12-31T23:59:59Z"},
          Row{-9'223'372'036, "1677-09-21T00:12:44Z"},
          Row{9'223'372'036, "2262-04-11T23:47:16Z"}}) {
        EXPECT_EQ(iso8601Text(WallTime{seconds{time}}), text);
        EXPECT_EQ(wallTimeFromISO8601(text), WallTime{seconds{time}});
    }
    EXPECT_EQ(iso8601Text(WallTime{milliseconds{1999}}), "1970-01-01T00:00:01Z");
    EXPECT_EQ(iso8601Text(WallTime{milliseconds{-1}}), "1969-12-31T23:59:59Z");
    EXPECT_EQ(wallTimeFromISO8601("1970-01-01T01:30:00+01:30"), WallTime{});
    EXPECT_EQ(wallTimeFromISO8601("1969-12-31T23:00:00-01:00"), WallTime{});
    for (const std::string_view early :
         {"1677-09-21T00:12:43Z", "0001-01-01T00:00:00Z", "0000-01-01T00:00:00+23:59"})
        EXPECT_EQ(wallTimeFromISO8601(early), WallTime{seconds{-9'223'372'036}}) << early;
    for (const std::string_view late :
         {"2262-04-11T23:47:17Z", "4001-01-01T00:00:00Z", "9999-12-31T23:59:59-23:59"})
        EXPECT_EQ(wallTimeFromISO8601(late), WallTime{seconds{9'223'372'036}}) << late;
}

TEST(ISO8601Date, RefusesOtherFormsAndDatesThatAreNone) {
    constexpr std::string_view kTexts =
        "|1767225600|2026-01-01|2026-01-01T00:00Z|2026-01-01T00:00:00|2026-01-01T00:00:00.5Z"
        "|2026-01-01T00:00:00ZZ| 2026-01-01T00:00:00Z|2026-01-01 00:00:00Z|2026-01-01t00:00:00z"
        "|20260101T000000Z|2026-1-01T00:00:00Z|+026-01-01T00:00:00Z|2026-13-01T00:00:00Z"
        "|2026-00-01T00:00:00Z|2025-02-29T00:00:00Z|2026-01-00T00:00:00Z|2026-01-01T24:00:00Z"
        "|2026-01-01T00:60:00Z|2026-01-01T00:00:60Z|2026-01-01T00:00:00+0100"
        "|2026-01-01T00:00:00+24:00|2026-01-01T00:00:00~01:00";
    for (const auto part : std::views::split(kTexts, '|'))
        EXPECT_EQ(wallTimeFromISO8601(std::string_view{part}), std::nullopt)
            << std::string_view{part};
}

}  // namespace
}  // namespace quorvane
