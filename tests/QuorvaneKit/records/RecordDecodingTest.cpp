// Untrusted text: what the decoder accepts and rejects, and that no input crashes it.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <ranges>
#include <sstream>

#include "QuorvaneKit/json/JSONReader.hpp"
#include "tests/QuorvaneKit/records/SampleRecords.hpp"

namespace quorvane {
namespace {

using Kind = CodingError::Kind;

struct Replacement {
    std::string_view part;
    std::string_view by;
};

TEST(RecordDecoding, LetsInWhatMeansTheSame) {
    const QuorvanePlayerState sample = sampleState();
    for (const auto& [part, by] : std::vector<Replacement>{
             {R"("volume":64)", R"("volume":64.0)"},
             {R"("volume":64)", R"("volume":6.4e1)"},
             {R"("volume":64)", R"("volume":6400E-2)"},
             {R"("playerState":2)", R"("playerState":2.0)"},
             {"12.25", "1225e-2"},
             {"12.25", "12.2500000000000000000000000000000000000000000000000000000001"},
             {"//4gcGljdHVyZT8=", R"(\/\/4gcGljdHVyZT8=)"},
             {"//4gcGljdHVyZT8=", R"(\u002f\u002F4gcGljdHVyZT8\u003d)"},
             {R"("//4g)", " \n\t\r\"//4g"},
             {R"("artworkData":)", R"("artwork\u0044ata" :)"},
             {"Ø & 夜", R"(\u00d8 & \u591C)"},
             {R"("isAdvertisement":false,)", ""},
             {R"("isAdvertisement":false)", R"("isAdvertisement":null)"},
             {R"({"track")", R"({"unknown":[1,{"a":[true,null,-1.5e-7,"\ud83c\udfb5"]}],"track")"},
             {R"({"track")", R"({"later":{"volume":1,"track":{"title":7}},"track")"},
             // The first of two equal keys counts, even when the second is invalid.
             {R"("volume":64)", R"("volume":64,"volume":"loud")"},
             {R"("playerState":2)", R"("playerState":2,"track":{"title":"other"})"},
             {R"("playerState":2)", R"("playerState":2,"track":null)"},
             {"00:00:00Z\"}", "00:00:00Z\"} \n\t\r"},
             {"2026-01-01T00:00:00Z", "2026-01-01T02:00:00+02:00"},
             {"2026-01-01T00:00:00Z", R"(\u0032026-01-01T00:00:00Z)"}}) {
        const std::string text = replaced(kSampleText, part, by);
        EXPECT_EQ(decodeState(text), sample) << text;
    }
}

TEST(RecordDecoding, TextsOfTheMacEncoderKeepTheirValues) {
    int texts = 0;
    for (const auto& file : std::filesystem::directory_iterator{ENCODER_TEXTS}) {
        if (file.path().extension() != ".json") continue;
        std::stringstream text;
        text << std::ifstream{file.path()}.rdbuf();
        const auto state = decodeState(text.str());
        ASSERT_TRUE(state) << file.path();
        EXPECT_TRUE(comesBack(*state)) << file.path();
        ++texts;
    }
    EXPECT_EQ(texts, 24);
}

TEST(RecordDecoding, NullAndAbsentAreOneForOptionals) {
    QuorvanePlayerState bare = *decodeState(kSmallestText);
    EXPECT_EQ(bare.track, std::nullopt);
    bare.track = XPCTrack{.title = "t", .artist = "a"};
    EXPECT_EQ(decodeState(replaced(kSmallestText, R"({"playerState":1)",
                                   R"({"track":{"title":"t","artist":"a","album":null,)"
                                   R"("duration":null,"artworkData":null},"playerState":1,)"
                                   R"("playerType":null,"repeatMode":null,"rating":null,)"
                                   R"("isLoved":null,"isDisliked":null)")),
              bare);
    EXPECT_EQ(decodeState(replaced(kSmallestText, "{", R"({"track":null,)")),
              decodeState(kSmallestText));
}

TEST(RecordDecoding, EveryRequiredKeyMustBeThereWithAValueOfItsType) {
    struct Row {
        std::string_view key;
        std::string_view value;
        std::vector<std::string_view> others;
    };
    const std::vector<Row> rows{
        {"title", R"("Línea \"A\"")", {"null", "1", "{}", "[]", "true"}},
        {"artist", R"("Ø & 夜")", {"null", "1"}},
        {"playerState", "2", {"null", R"("2")", "true", "[2]"}},
        {"volume", "64", {"null", R"("64")", "false", "{}"}},
        {"isMuted", "false", {"null", "0", R"("false")"}},
        {"shuffleEnabled", "true", {"null", "1"}},
        {"playerPosition", "12.25", {"null", R"("12.25")", "false"}},
        {"timestamp", R"("2026-01-01T00:00:00Z")", {"null", "1767225600", "1767225600.0"}},
        {"canLove", "true", {"null", "1"}},
        {"canDislike", "false", {"null", "0"}},
        {"canRate", "true", {"null", "{}"}},
        {"canAddToLibrary", "false", {"null", "[]"}},
        {"hasThreeStateRepeat", "true", {"null", R"("")"}},
    };
    for (const auto& [key, value, others] : rows) {
        const std::string member = "\"" + std::string{key} + "\":";
        const std::string whole = member + std::string{value};
        const auto missing = decodeState(replaced(kSampleText, whole, R"("other":1)"));
        ASSERT_FALSE(missing) << key;
        EXPECT_EQ(missing.error(), (CodingError{Kind::keyNotFound, key})) << key;
        for (const std::string_view other : others) {
            const auto result =
                decodeState(replaced(kSampleText, whole, member + std::string{other}));
            ASSERT_FALSE(result) << key << other;
            EXPECT_EQ(
                result.error(),
                (CodingError{other == "null" ? Kind::valueNotFound : Kind::typeMismatch, key}));
        }
    }
}

TEST(RecordDecoding, RefusesValuesOutsideTheirTablesAndTypes) {
    struct Row {
        std::string_view part;
        std::string_view by;
        Kind kind;
        std::string_view key;
    };
    const std::string_view capabilities = kSampleText.substr(kSampleText.find(R"({"canLove)"));
    const std::string_view object = capabilities.substr(0, capabilities.find('}') + 1);
    for (const auto& [part, by, kind, key] : std::vector<Row>{
             {R"("playerState":2)", R"("playerState":4)", Kind::dataCorrupted, "playerState"},
             {R"("playerState":2)", R"("playerState":2.5)", Kind::dataCorrupted, "playerState"},
             {R"("repeatMode":3)", R"("repeatMode":0)", Kind::dataCorrupted, "repeatMode"},
             {R"("spotify")", R"("Spotify")", Kind::dataCorrupted, "playerType"},
             {R"("volume":64)", R"("volume":64.5)", Kind::dataCorrupted, "volume"},
             {R"("volume":64)", R"("volume":9223372036854775808)", Kind::dataCorrupted, "volume"},
             {R"("volume":64)", R"("volume":9223372036854775808.0)", Kind::dataCorrupted, "volume"},
             {R"("rating":-3)", R"("rating":"-3")", Kind::typeMismatch, "rating"},
             {R"("isLoved":true)", R"("isLoved":1)", Kind::typeMismatch, "isLoved"},
             {R"("duration":241.5)", R"("duration":"241.5")", Kind::typeMismatch, "duration"},
             {R"("isLiveStream":true)", R"("isLiveStream":"true")", Kind::typeMismatch,
              "isLiveStream"},
             {R"("//4gcGljdHVyZT8=")", "[]", Kind::typeMismatch, "artworkData"},
             {R"(ZT8=")", R"(ZT8")", Kind::dataCorrupted, "artworkData"},
             {R"(//4g)", R"(/ /4g)", Kind::dataCorrupted, "artworkData"},
             {R"(//4g)", "\xC3\xA9", Kind::dataCorrupted, "artworkData"},
             {R"(//4g)", R"(\\/4g)", Kind::dataCorrupted, "artworkData"},
             {"2026-01-01T00:00:00Z", "2026-01-01", Kind::dataCorrupted, "timestamp"},
             {object, "[]", Kind::typeMismatch, "capabilities"},
             {object, "null", Kind::valueNotFound, "capabilities"},
             {R"("capabilities")", R"("Capabilities")", Kind::keyNotFound, "capabilities"}}) {
        const auto result = decodeState(replaced(kSampleText, part, by));
        ASSERT_FALSE(result) << by;
        EXPECT_EQ(result.error(), (CodingError{kind, key})) << by;
    }
}

TEST(RecordDecoding, RefusesWhatIsNotOneJSONObject) {
    const std::string sample{kSampleText};
    const std::string zero(1, '\0');
    for (const std::string& text :
         {std::string{}, zero, sample + "}", sample + "x", sample + sample, sample + zero,
          sample + zero + "{}", zero + sample, "\xEF\xBB\xBF" + sample,
          "\xFF\xFE{" + zero + "}" + zero, sample.substr(0, 40) + zero + sample.substr(40)})
        EXPECT_EQ(decodeState(text), std::unexpected(CodingError{})) << text;
    for (std::size_t length = 0; length < kSampleText.size(); ++length)
        EXPECT_FALSE(decodeState(kSampleText.substr(0, length))) << length;
    for (const std::string_view text : {"[]", "1", "\"text\"", "null", "true", "[{}]"})
        EXPECT_EQ(decodeState(text), std::unexpected(CodingError{Kind::typeMismatch, ""})) << text;
}

// Values between bars, on which parsers are known to differ.
constexpr std::string_view kJSONValues =
    R"(0 | -0 | -0.0 | 0e0 | 0E+01 | 1e-002 | -1e-99999 | 123.456e78 | 1e308 | 18446744073709551616)"
    R"( | 0.00000000000000000000000000000001 | "" | "/*\\u" | "\"\\\/\b\f\n\r\t" | "\u0000")"
    R"( | "\uD834\uDd1e" | "\uFFFF\uFDD0" | null | [] | [ ] | [[],[[]]] | [true,false,null] | {})"
    R"( | { } | {"":0} | {"a":1,"a":2} | {"a\u0000b":1} | 1,"volume\u0000":"loud")"
    " |  \t\n\r1 \r | [1\n,\r2] | \"\x7F\xE2\x80\xA8\xEF\xBB\xBF\xF4\x8F\xBF\xBF\"";
// The first two exceed the range of a double.
constexpr std::string_view kNoJSONValues =
    R"(1e400 | -1E99999999999 |  | +1 | - | --1 | -01 | 00 | 1. | .5 | -.5 | 1e | 1E+ | 1.e1 | 1e1.5)"
    R"( | 0x10 | 1_000 | 1 000 | 1a | -a | NaN | -Infinity | inf | 'x' | "\x41" | "\a" | "\u00g0")"
    R"( | "\U0041" | "\u004" | "\ " | "\" | "a | a" | "\ud834\udd" | "\ud800\ud800" | "\udd1e\ud834")"
    R"( | True | nul | truee | undefined | [1,] | [,1] | [,] | [1,,2] | [1 2] | [1:2] | [ | ] | [1)"
    R"( | [[] | []] | [1} | [1]x | 1// | 1/**/ | 1# | {1:1} | {a:1} | {'a':1} | {"a"} | {"a":})"
    R"( | {"a" 1} | {"a"::1} | {"a":1,,"b":2} | {,} | {"a":1 "b":2} | {:1} | {null:1} | {"a":1)"
    R"( | {"a",1} | {"a":1,} | {}} | {"a":/*x*/1})"
    " | \xEF\xBC\x91 | \"\\\xC3\xA9\" | \"\n\" | [\f1] | [\v1] | [\xC2\xA0] | [\xEF\xBB\xBF]";

// Expects the result for each value under an unknown key, where the grammar holds too.
void expectEach(std::string_view values, const CodingResult<QuorvanePlayerState>& expected) {
    for (const auto part : std::views::split(values, std::string_view{" | "})) {
        const std::string value{std::string_view{part}};
        for (const std::string& unknown : {value, "[0 ,{\"a\":" + value + "}, 0]"})
            EXPECT_EQ(decodeState(replaced(kSampleText, R"("volume")",
                                           R"("unknown":)" + unknown + R"(,"volume")")),
                      expected)
                << unknown;
    }
}

TEST(RecordDecoding, EveryValueKeepsToTheGrammar) {
    expectEach(kJSONValues, sampleState());
    expectEach(kNoJSONValues, std::unexpected(CodingError{}));
}

TEST(RecordDecoding, RefusesControlCharactersAndBadUTF8WhereverTheyStand) {
    constexpr std::string_view kBad =
        "\x80 \xC3 \xC0\xAF \xE0\x80\xAF \xED\xA0\x80 \xF0\x80\x80\xAF \xF4\x90\x80\x80 "
        "\xF8\x88\x80\x80\x80 \xFF \xE5\xA4 \xE5\xA4\x41 \xF0\x9F\x41\xB5 \xF0\x9F\x8E\x41 "
        "\\udc00 \\ud800 \\ud800\\u0041";
    std::vector<std::string> letters;
    for (const auto part : std::views::split(kBad, ' '))
        letters.emplace_back(std::string_view{part});
    for (char control = 0; control < ' '; ++control) letters.emplace_back(1, control);
    for (const std::string& letter : letters) {
        for (const std::string& member :
             {R"("unknown":")" + letter + '"', R"("unknown":[[")" + letter + R"("]])",
              '"' + letter + R"(":1)"})
            EXPECT_EQ(decodeState(replaced(kSampleText, R"("volume")", member + R"(,"volume")")),
                      std::unexpected(CodingError{}))
                << member;
        // A parser that reads sixteen letters at a time may depend on the position.
        for (std::size_t room = 0; room < 32; ++room) {
            const std::string text =
                replaced(kSampleText, "loop-7", std::string(room, ' ') + letter);
            EXPECT_EQ(decodeState(text), std::unexpected(CodingError{})) << text;
        }
    }
}

TEST(RecordDecoding, NestingIsBounded) {
    const auto nested = [](std::size_t depth, std::string_view open, std::string_view close) {
        std::string value;
        for (std::size_t level = 0; level < depth; ++level) value += open;
        for (std::size_t level = 0; level < depth; ++level) value += close;
        return replaced(kSampleText, R"("volume")", R"("unknown":)" + value + R"(,"volume")");
    };
    // The record itself is the first level.
    EXPECT_TRUE(decodeState(nested(kDeepestNesting - 1, "[", "]")));
    EXPECT_FALSE(decodeState(nested(kDeepestNesting, "[", "]")));
    EXPECT_FALSE(decodeState(nested(1'000'000, "{\"a\":", "}")));
    EXPECT_FALSE(decodeState(std::string(1'000'000, '[')));
}

TEST(RecordDecoding, ExtremeNumbersNeitherOverflowNorStall) {
    const std::string zeros(100'000, '0');
    for (const std::string& number :
         {"0." + zeros + "1", "1" + zeros, "0." + zeros + "1e-2147483648",
          std::string{"-1e99999999999"}})
        for (const std::string_view part : {"12.25", "64"})
            EXPECT_FALSE(decodeState(replaced(kSampleText, part, number))) << number.substr(0, 20);
    // A number too small for a double is 0.
    EXPECT_EQ(decodeState(replaced(kSampleText, "12.25", "1.5e-2147483648"))->playerPosition, 0);
}

TEST(RecordDecoding, HelloAndConfigurationAreAsStrict) {
    const auto hello = [](std::string_view text) {
        return XPCCodableHelpers::decode<LockScreenAddOnHello>(bytesOf(text));
    };
    constexpr std::string_view text =
        R"({"protocolVersion":1,"addOnVersion":"1.2.3","macOSVersion":"26.1.0",)"
        R"("supportsThisMacOS":true,"supersedesRemoval":false})";
    EXPECT_EQ(hello(text), (LockScreenAddOnHello{1, "1.2.3", "26.1.0", true, {}, false}));
    for (const std::string_view key : {"protocolVersion", "addOnVersion", "macOSVersion",
                                       "supportsThisMacOS", "supersedesRemoval"})
        EXPECT_EQ(hello(replaced(text, key, "other")),
                  std::unexpected(CodingError{Kind::keyNotFound, key}));
    EXPECT_FALSE(hello(replaced(text, R"("1.2.3")", "1.2")));
    EXPECT_FALSE(XPCCodableHelpers::decode<LockScreenAddOnConfiguration>(
        bytesOf(R"({"isEnabled":true,"removalRequested":false})")));
}

}  // namespace
}  // namespace quorvane
