#include "host/players/PlayerSnapshot.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr Instant kNow{1000s};
constexpr WallTime kWallTime{1'767'225'600s};

PlayerSnapshot playing(double seconds, Instant at) {
    PlayerSnapshot snapshot;
    snapshot.state.track = XPCTrack{.title = "Title", .artist = "Artist"};
    snapshot.state.playerState = XPCPlayerState::playing;
    snapshot.anchor = {.seconds = seconds, .at = at, .isPlaying = true, .duration = 200};
    return snapshot;
}

TEST(StateAt, TellsTheExactPositionWithATimestampOfWholeSeconds) {
    PlayerSnapshot snapshot = playing(0.2, kNow);
    snapshot.anchor.rate = 1.5;
    for (const auto elapsed : {0ms, 400ms, 5300ms}) {
        const WallTime moment = kWallTime + 600ms + elapsed;
        const auto state = stateAt(snapshot, kNow + elapsed, moment);
        EXPECT_EQ(state.timestamp, std::chrono::floor<std::chrono::seconds>(moment));
        // What a receiver extrapolates.
        EXPECT_NEAR(state.playerPosition + secondsBetween(state.timestamp, moment),
                    snapshot.anchor.secondsAt(kNow + elapsed), 1e-9);
    }
    snapshot.anchor.isPlaying = false;
    EXPECT_DOUBLE_EQ(stateAt(snapshot, kNow + 10s, kWallTime + 700ms).playerPosition, 0.2);
}

TEST(IsNews, OnlyWhatAReceiverCannotForesee) {
    const PlayerSnapshot before = playing(10, kNow);
    const Instant later = kNow + 20s;
    EXPECT_FALSE(isNews(before, playing(30, later), later));
    EXPECT_FALSE(isNews(before, playing(30.2, later), later));
    EXPECT_TRUE(isNews(before, playing(29.7, later), later));
    EXPECT_TRUE(isNews(before, playing(30.3, later), later));
    PlayerSnapshot after[4] = {before, before, before, before};
    after[0].state.volume = 3;
    after[1].state.track->artworkData.emplace(Bytes(3));
    after[2].anchor.isPlaying = false;
    after[3].anchor.rate = 1.25;
    for (const PlayerSnapshot& each : after)
        EXPECT_TRUE(isNews(before, each, kNow)) << &each - after;
}

}  // namespace
}  // namespace quorvane
