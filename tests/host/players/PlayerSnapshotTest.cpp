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

// The position that a receiver extrapolates for a moment.
double seenAt(const QuorvanePlayerState& state, WallTime moment) {
    const bool isPlaying = state.playerState == XPCPlayerState::playing;
    return state.playerPosition + (isPlaying ? secondsBetween(state.timestamp, moment) : 0);
}

TEST(StateAt, TellsTheExactPositionWithATimestampOfWholeSeconds) {
    for (const double rate : {1.0, 1.5}) {
        PlayerSnapshot snapshot = playing(0.2, kNow);
        snapshot.anchor.rate = rate;
        for (const auto elapsed : {0ms, 100ms, 400ms, 999ms, 5300ms}) {
            const WallTime moment = kWallTime + 600ms + elapsed;
            const auto state = stateAt(snapshot, kNow + elapsed, moment);
            EXPECT_EQ(state.timestamp.time_since_epoch() % 1s, 0s);
            EXPECT_LE(state.timestamp, moment);
            EXPECT_NEAR(seenAt(state, moment), snapshot.anchor.secondsAt(kNow + elapsed), 1e-9);
        }
    }
    PlayerSnapshot paused = playing(30.25, kNow);
    paused.state.playerState = XPCPlayerState::paused;
    paused.anchor.isPlaying = false;
    EXPECT_DOUBLE_EQ(stateAt(paused, kNow + 10s, kWallTime + 700ms).playerPosition, 30.25);
}

TEST(IsNews, OnlyWhatAReceiverCannotForesee) {
    const PlayerSnapshot before = playing(10, kNow);
    const Instant later = kNow + 20s;
    EXPECT_FALSE(isNews(before, before, later));
    EXPECT_FALSE(isNews(before, playing(30, later), later));
    EXPECT_FALSE(isNews(before, playing(30.2, later), later));
    EXPECT_TRUE(isNews(before, playing(33, later), later));
    EXPECT_TRUE(isNews(before, playing(10, later), later));

    using Change = void (*)(PlayerSnapshot&);
    const Change changes[] = {
        [](PlayerSnapshot& s) { s.state.volume = 3; },
        [](PlayerSnapshot& s) { s.state.isLoved = true; },
        [](PlayerSnapshot& s) { s.state.track->title = "Other"; },
        [](PlayerSnapshot& s) { s.state.track->artworkData.emplace(Bytes(3)); },
        [](PlayerSnapshot& s) { s.state.track.reset(); },
        [](PlayerSnapshot& s) { s.anchor.isPlaying = false; },
        [](PlayerSnapshot& s) { s.anchor.rate = 1.25; },
    };
    for (const Change change : changes) {
        PlayerSnapshot after = before;
        change(after);
        EXPECT_TRUE(isNews(before, after, kNow)) << &change - changes;
    }
}

}  // namespace
}  // namespace quorvane
