#include <gtest/gtest.h>

#include <limits>

#include "QuorvaneKit/records/PlayerStateDecoder.hpp"
#include "QuorvaneKit/records/PlayerStateEncoder.hpp"
#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "tests/QuorvaneKit/records/SampleRecords.hpp"
#include "tests/support/MemoryPorts.hpp"

namespace quorvane {
namespace {

using Kind = CodingError::Kind;

template <typename Record>
void expectText(const Record& record, std::string_view text) {
    const auto encoded = XPCCodableHelpers::encode(record);
    ASSERT_TRUE(encoded);
    EXPECT_EQ(textOf(*encoded), text);
    EXPECT_EQ(XPCCodableHelpers::decode<Record>(bytesOf(text)), record);
}

TEST(RecordCoding, EveryRecordHasItsTextWithTheKeysInOrder) {
    expectText(sampleState(), kSampleText);
    expectText(LockScreenAddOnHello{1, "1.2.3", "26.1.0", true, "ID", false},
               R"({"protocolVersion":1,"addOnVersion":"1.2.3","macOSVersion":"26.1.0",)"
               R"("supportsThisMacOS":true,"installID":"ID","supersedesRemoval":false})");
    expectText(LockScreenAddOnConfiguration{true, false, "1.0.0"},
               R"({"isEnabled":true,"removalRequested":false,"minimumAddOnVersion":"1.0.0"})");
    expectText(LockScreenAddOnSighting{"1.2.3", "26.1.0", false, ManualClock::kStart, "ID"},
               R"({"addOnVersion":"1.2.3","macOSVersion":"26.1.0","supportsThisMacOS":false,)"
               R"("date":"2026-01-01T00:00:00Z","installID":"ID"})");
    expectText(CodablePoint{-1.5, 2.5}, R"({"x":-1.5,"y":2.5})");
    expectText(CodableSizeWithVersion{0.5, 1e21, "2"},
               R"({"width":0.5,"height":1e21,"manifestVersion":"2"})");
}

TEST(RecordCoding, AbsentOptionalsAreLeftOut) {
    QuorvanePlayerState state = *decodeState(kSmallestText);
    expectText(state, replaced(kSmallestText, R"("playerPosition":0)", R"("playerPosition":0.0)"));
    state.track = XPCTrack{.title = "t", .artist = ""};
    const auto text = XPCCodableHelpers::encode(state);
    EXPECT_TRUE(
        textOf(text.value())
            .starts_with(
                R"({"track":{"title":"t","artist":"","isAdvertisement":false,"isLiveStream":false},)"));
}

TEST(RecordCoding, NumbersAndTextsComeBackAsTheyWere) {
    QuorvanePlayerState state = sampleState();
    for (const std::int64_t volume : {INT64_MIN, -1L, INT64_MAX})
        for (const double position :
             {0.1, 1.0 / 3, -0.0, 5e-324, 1.7976931348623157e308, 123456789.123456789}) {
            state.volume = volume;
            state.playerPosition = position;
            EXPECT_TRUE(comesBack(state)) << volume << " " << position;
        }
    for (const std::string_view title :
         {std::string_view{"\0\x01\x1F\n\t\b", 6}, std::string_view{"\x7F/\"\\"},
          std::string_view{"\U0001F3B5\uFFFF\u2028"}}) {
        state.track->title = title;
        EXPECT_TRUE(comesBack(state)) << title;
    }
    // Values that JSON cannot represent are not written.
    state.track->artist = "cut short \xC3";
    EXPECT_EQ(XPCCodableHelpers::encode(state),
              std::unexpected(CodingError{Kind::invalidValue, "artist"}));
    using Limits = std::numeric_limits<double>;
    state = sampleState();
    for (const double position : {Limits::quiet_NaN(), -Limits::infinity()}) {
        state.playerPosition = position;
        EXPECT_EQ(XPCCodableHelpers::encode(state),
                  std::unexpected(CodingError{Kind::invalidValue, "playerPosition"}));
    }
}

TEST(RecordCoding, OnlyRawValuesInTheTableNameActions) {
    std::string actions;
    for (std::int64_t raw = -300; raw < 300; ++raw)
        if (const auto action = quorvaneAction(raw))
            actions.append(std::to_string(raw)).append(actionName(*action)).append(" ");
    EXPECT_EQ(actions,
              "0playPause 1nextTrack 2previousTrack 10increaseVolume 11decreaseVolume 12toggleMute "
              "20toggleLove 21toggleDislike 22increaseRating 23decreaseRating 24removeRating "
              "30toggleShuffle 31toggleRepeat 40activatePlayer 41switchPlayer ");
    EXPECT_EQ(quorvaneAction(std::int64_t{1} << 32), std::nullopt);
}

// The decoder and the encoder that remember the artwork of the last state.

CodingResult<QuorvanePlayerState> decode(PlayerStateDecoder& decoder, std::string_view text) {
    Bytes reply = copyOf(bytesOf(text));
    return decoder.decode(reply);
}

const SharedBytes& artworkOf(const CodingResult<QuorvanePlayerState>& state) {
    return state.value().track.value().artworkData.value();
}

// The sample's text, compact and with white space.
const std::string kForms[] = {
    std::string{kSampleText},
    replaced(kSampleText, R"("artworkData":)", "\"artworkData\"\n\t\r : "),
    replaced(kSampleText, "//4g", R"(\/\/4g)"), replaced(kSampleText, "//4g", R"(\u002f/4g)")};

TEST(PlayerStateDecoder, UnchangedArtworkIsTheSameObject) {
    for (const std::string& text : kForms) {
        PlayerStateDecoder decoder;
        const auto first = decode(decoder, text);
        EXPECT_EQ(first, sampleState()) << text;
        // The rest of the state may differ and move the artwork within the text.
        const auto second = decode(decoder, replaced(text, "Several", "Several others"));
        EXPECT_EQ(second->track->albumArtist, "Several others");
        // The artwork is reused only when its text has no escapes but those that encoders write.
        const bool isKept = text.find("\\u002f") == std::string::npos;
        EXPECT_EQ(artworkOf(second).isSameObject(artworkOf(first)), isKept) << text;
        EXPECT_EQ(decode(decoder, "no state"), std::unexpected(CodingError{}));
        EXPECT_EQ(artworkOf(decode(decoder, text)).isSameObject(artworkOf(first)), isKept);
        EXPECT_TRUE(decode(decoder, kSmallestText));  // no artwork: drops the remembered one
        EXPECT_FALSE(artworkOf(decode(decoder, text)).isSameObject(artworkOf(first)));
    }
}

TEST(PlayerStateDecoder, AgreesWithThePlainDecoderOnEveryText) {
    const std::string_view key = R"("artworkData":"//4gcGljdHVyZT8=")";
    const std::string artwork{key};
    const std::vector<std::string> texts{
        replaced(kSampleText, key, artwork + R"(,"artworkData":"AAAA")"),
        replaced(kSampleText, key, R"("artworkData":null,)" + artwork),
        replaced(kSampleText, key, R"("other":{)" + artwork + R"(},"artworkData" :"AAAA")"),
        replaced(kSampleText, R"({"track")", "{" + artwork + R"(,"track")"),
        replaced(kSampleText, key, R"("\"artworkData":"AAAA")"),
        replaced(kSampleText, "loop-7", R"(\"artworkData\":\"AAAA)"),
        replaced(kSampleText, R"("title":)", R"("title":"x"artworkData":"AAAA",)"),
        replaced(kSampleText, R"("title":)", R"("x\\"artworkData":"AAAA","title":)"),
        replaced(kSampleText, key, R"("artworkData":"")"),
        replaced(kSampleText, key, R"("artworkData":"AA\"=")"),
        replaced(kSampleText, key, R"("artworkData":"AAAA)"),
        replaced(kSampleText, "//4g", "\n//4g"),
        std::string{kSampleText} + artwork,
        artwork,
        // The same text as in the reply before, but here the backslashes are literal.
        kForms[2],
        replaced(kForms[1], "//4g", R"(\\/\\/4g)"),
        replaced(kForms[1], " : ", "  "),
        replaced(kForms[1], " : ", " : : "),
        replaced(kForms[1], " : ", " : 1"),
        replaced(kSampleText, R"("Several")", R"("artworkData")"),
        R"({"track":{"artworkData")",
        R"({"track":{"artworkData" : )",
    };
    PlayerStateDecoder decoder;
    for (const std::string& text : texts) {
        const auto expected = decodeState(text);
        PlayerStateDecoder fresh;
        ASSERT_EQ(decode(fresh, text), expected) << text;
        ASSERT_EQ(decode(decoder, text), expected) << text;
        ASSERT_EQ(decode(decoder, text), expected) << text;
    }
}

TEST(PlayerStateEncoder, WritesAsThePlainEncoderDoesWhateverCameBefore) {
    PlayerStateEncoder encoder;
    const QuorvanePlayerState state = sampleState();
    QuorvanePlayerState other = state;
    other.track->artworkData = SharedBytes{Bytes(100'000, std::byte{0xFB})};
    QuorvanePlayerState bare = state;
    bare.track->artworkData.reset();
    const auto encode = [&](const QuorvanePlayerState& given) -> CodingResult<Bytes> {
        const auto answer = encoder.encode(given);
        if (!answer) return std::unexpected{answer.error()};
        return joined(answer->parts());
    };
    for (const auto& next : {state, state, sampleState(), other, other, bare, state, other})
        EXPECT_EQ(encode(next), XPCCodableHelpers::encode(next));
    EXPECT_EQ(encoder.encode(other)->shared, encoder.encode(other)->shared);
    other.playerPosition = std::numeric_limits<double>::infinity();
    EXPECT_EQ(encode(other), XPCCodableHelpers::encode(other));
    EXPECT_EQ(encode(state), XPCCodableHelpers::encode(state));
}

}  // namespace
}  // namespace quorvane
