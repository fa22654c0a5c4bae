#include "host/players/ScriptedPlayer.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

class ScriptedPlayerTest : public testing::Test {
protected:
    ScriptedPlayerTest() {
        for (const char* title : {"one", "two", "three"})
            script.tracks.push_back({.track = {.title = title, .artist = "A", .duration = 100}});
        script.capabilities = {.canLove = true, .canDislike = true, .hasThreeStateRepeat = true};
    }

    void start() {
        player.emplace(script, clock.clock());
        player->onChanged = [this] { ++changes; };
    }
    QuorvanePlayerState state() const { return player->snapshot().state; }
    // The track and how far it has played.
    std::pair<std::string, double> place() {
        return {state().track->title, player->snapshot().anchor.secondsAt(clock.clock().now())};
    }
    std::pair<std::string, double> placeAfter(Duration time) {
        clock.advance(time);
        return place();
    }
    bool act(QuorvaneAction action) { return player->perform(action); }

    using Place = std::pair<std::string, double>;
    ManualClock clock;
    Script script;
    std::optional<ScriptedPlayer> player;
    int changes = 0;
};

TEST_F(ScriptedPlayerTest, PlaysThroughAndStops) {
    script.startPosition = 40;
    start();
    EXPECT_EQ(state().playerState, XPCPlayerState::playing);
    EXPECT_EQ(placeAfter(59s), Place("one", 99));
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(placeAfter(2s), Place("two", 1));
    EXPECT_EQ(changes, 1);
    clock.advance(200s);
    EXPECT_EQ(state().playerState, XPCPlayerState::stopped);
    EXPECT_EQ(place(), Place("one", 0));
    EXPECT_EQ(clock.pendingTimers(), 0u);
    act(QuorvaneAction::playPause);
    EXPECT_EQ(placeAfter(3s), Place("one", 3));
    act(QuorvaneAction::playPause);
    clock.advance(10s);
    act(QuorvaneAction::playPause);
    EXPECT_EQ(placeAfter(98s), Place("two", 1)) << "a pause postpones the end of the track";
    script.startPosition = 250;
    start();
    EXPECT_EQ(place(), Place("one", 100)) << "limited to the track";
}

TEST_F(ScriptedPlayerTest, GoesForthAndBack) {
    start();
    act(QuorvaneAction::nextTrack);
    clock.advance(4s);
    act(QuorvaneAction::previousTrack);
    EXPECT_EQ(place(), Place("two", 0)) << "after three seconds, the track restarts";
    clock.advance(3s);
    act(QuorvaneAction::previousTrack);
    EXPECT_EQ(place(), Place("one", 0));
    act(QuorvaneAction::playPause);
    act(QuorvaneAction::nextTrack);
    EXPECT_EQ(state().playerState, XPCPlayerState::paused) << "a change of tracks keeps the state";
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(ScriptedPlayerTest, Repeats) {
    script.repeatMode = XPCRepeatMode::one;
    script.startTrack = 2;
    start();
    EXPECT_EQ(placeAfter(101s), Place("three", 1));
    act(QuorvaneAction::nextTrack);
    EXPECT_EQ(place(), Place("one", 0)) << "the command advances although one track repeats";
    using enum XPCRepeatMode;
    for (const auto mode : {off, all, one}) {
        act(QuorvaneAction::toggleRepeat);
        EXPECT_EQ(state().repeatMode, mode);
    }
}

TEST_F(ScriptedPlayerTest, VolumeLoveAndRating) {
    start();
    act(QuorvaneAction::increaseVolume);
    EXPECT_EQ(state().volume, 55);
    player->setVolume(250);
    EXPECT_EQ(state().volume, 100);
    act(QuorvaneAction::toggleMute);
    EXPECT_TRUE(state().isMuted);
    act(QuorvaneAction::toggleDislike);
    act(QuorvaneAction::toggleLove);
    EXPECT_EQ(state().isDisliked, false) << "a track cannot be loved and disliked";
    EXPECT_FALSE(act(QuorvaneAction::increaseRating)) << "not among its capabilities";
    script.capabilities.canRate = true;
    start();
    act(QuorvaneAction::toggleLove);
    act(QuorvaneAction::increaseRating);
    act(QuorvaneAction::nextTrack);
    EXPECT_EQ(state().isLoved, std::nullopt);
    act(QuorvaneAction::previousTrack);
    EXPECT_EQ(state().isLoved, true) << "stored per track";
    EXPECT_EQ(state().rating, 20);
}

}  // namespace
}  // namespace quorvane
