#include <gtest/gtest.h>

#include <limits>

#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "tests/QuorvaneKit/records/SampleRecords.hpp"

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
    QuorvanePlayerState state;
    state.playerState = XPCPlayerState::stopped;
    state.timestamp = ManualClock::kStart;
    expectText(state, replaced(kSmallestText, R"("playerPosition":0)", R"("playerPosition":0.0)"));
    state.track = XPCTrack{.title = "t", .artist = ""};
    const auto text = XPCCodableHelpers::encode(state);
    ASSERT_TRUE(text);
    EXPECT_TRUE(textOf(*text).starts_with(
        R"({"track":{"title":"t","artist":"","isAdvertisement":false,"isLiveStream":false},)"));
    EXPECT_TRUE(comesBack(state));
}

TEST(RecordCoding, NumbersAndTextsComeBackAsTheyWere) {
    QuorvanePlayerState state = sampleState();
    for (const std::int64_t volume : {std::numeric_limits<std::int64_t>::min(), std::int64_t{-1},
                                      std::numeric_limits<std::int64_t>::max()})
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
}

TEST(RecordCoding, WhatJSONCannotCarryIsNotWritten) {
    using Limits = std::numeric_limits<double>;
    QuorvanePlayerState state = sampleState();
    for (const double position : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity()}) {
        state.playerPosition = position;
        EXPECT_EQ(XPCCodableHelpers::encode(state),
                  std::unexpected(CodingError{Kind::invalidValue, "playerPosition"}));
    }
    state = sampleState();
    state.track->artist = "cut short \xC3";
    EXPECT_EQ(XPCCodableHelpers::encode(state),
              std::unexpected(CodingError{Kind::invalidValue, "artist"}));
}

TEST(RecordCoding, OnlyRawValuesInTheTablesNameAnything) {
    std::string actions;
    for (std::int64_t raw = -300; raw < 300; ++raw) {
        if (const auto action = quorvaneAction(raw))
            actions.append(std::to_string(raw)).append(actionName(*action)).append(" ");
        const bool isState = raw >= 0 && raw <= 3;
        const bool isMode = raw >= 1 && raw <= 3;
        EXPECT_EQ(xpcPlayerState(raw).has_value(), isState) << raw;
        EXPECT_EQ(xpcRepeatMode(raw).has_value(), isMode) << raw;
    }
    EXPECT_EQ(actions,
              "0playPause 1nextTrack 2previousTrack 10increaseVolume 11decreaseVolume 12toggleMute "
              "20toggleLove 21toggleDislike 22increaseRating 23decreaseRating 24removeRating "
              "30toggleShuffle 31toggleRepeat 40activatePlayer 41switchPlayer ");
    EXPECT_EQ(quorvaneAction(std::int64_t{1} << 32), std::nullopt);
}

}  // namespace
}  // namespace quorvane
