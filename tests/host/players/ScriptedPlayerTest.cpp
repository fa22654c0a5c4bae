#include "host/players/ScriptedPlayer.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

class ScriptedPlayerTest : public testing::Test {
protected:
    static Script threeTracks() {
        Script script;
        for (const char* title : {"one", "two", "three"})
            script.tracks.push_back({.track = {.title = title, .artist = "A", .duration = 100}});
        script.capabilities = {.canLove = true,
                               .canDislike = true,
                               .canRate = true,
                               .canAddToLibrary = false,
                               .hasThreeStateRepeat = true};
        return script;
    }

    void start(Script script) {
        player.emplace(std::move(script), clock.clock());
        player->onChanged = [this] { ++changes; };
    }
    QuorvanePlayerState state() const { return player->snapshot().state; }
    std::string title() const { return state().track->title; }
    double position() { return player->snapshot().anchor.secondsAt(clock.clock().now()); }
    void act(QuorvaneAction action) { player->perform(action); }

    ManualClock clock;
    std::optional<ScriptedPlayer> player;
    int changes = 0;
};

TEST_F(ScriptedPlayerTest, PlaysThroughAndStops) {
    Script script = threeTracks();
    script.startPosition = 40;
    start(std::move(script));
    EXPECT_EQ(state().playerState, XPCPlayerState::playing);
    clock.advance(59s);
    EXPECT_EQ(title(), "one");
    EXPECT_DOUBLE_EQ(position(), 99);
    EXPECT_EQ(changes, 0);
    clock.advance(2s);
    EXPECT_EQ(title(), "two");
    EXPECT_DOUBLE_EQ(position(), 1);
    EXPECT_EQ(changes, 1);
    clock.advance(200s);
    EXPECT_EQ(state().playerState, XPCPlayerState::stopped);
    EXPECT_EQ(title(), "one");
    EXPECT_EQ(clock.pendingTimers(), 0u);
    act(QuorvaneAction::playPause);
    clock.advance(3s);
    EXPECT_DOUBLE_EQ(position(), 3);
    act(QuorvaneAction::playPause);
    clock.advance(10s);
    act(QuorvaneAction::playPause);
    clock.advance(98s);
    EXPECT_EQ(title(), "two") << "a pause postpones the end of the track";
    EXPECT_DOUBLE_EQ(position(), 1);

    script = threeTracks();
    script.startPosition = 250;
    start(std::move(script));
    EXPECT_DOUBLE_EQ(position(), 100) << "limited to the track";
}

TEST_F(ScriptedPlayerTest, GoesForthAndBack) {
    start(threeTracks());
    act(QuorvaneAction::nextTrack);
    clock.advance(4s);
    act(QuorvaneAction::previousTrack);
    EXPECT_EQ(title(), "two") << "after three seconds, the track restarts";
    EXPECT_DOUBLE_EQ(position(), 0);
    clock.advance(2s);
    act(QuorvaneAction::previousTrack);
    EXPECT_EQ(title(), "one");
    act(QuorvaneAction::playPause);
    act(QuorvaneAction::nextTrack);
    EXPECT_EQ(state().playerState, XPCPlayerState::paused) << "a change of tracks keeps the state";
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(ScriptedPlayerTest, Repeats) {
    Script script = threeTracks();
    script.capabilities = {.hasThreeStateRepeat = true};
    script.repeatMode = XPCRepeatMode::one;
    script.startTrack = 2;
    start(std::move(script));
    clock.advance(101s);
    EXPECT_EQ(title(), "three");
    EXPECT_DOUBLE_EQ(position(), 1);
    act(QuorvaneAction::nextTrack);
    EXPECT_EQ(title(), "one") << "the command advances although one track repeats";

    std::vector<XPCRepeatMode> modes;
    for (int i = 0; i < 3; ++i) {
        act(QuorvaneAction::toggleRepeat);
        modes.push_back(*state().repeatMode);
    }
    EXPECT_EQ(modes, (std::vector{XPCRepeatMode::off, XPCRepeatMode::all, XPCRepeatMode::one}));
    EXPECT_FALSE(player->perform(QuorvaneAction::toggleLove)) << "not among its capabilities";
}

TEST_F(ScriptedPlayerTest, VolumeLoveAndRating) {
    start(threeTracks());
    act(QuorvaneAction::increaseVolume);
    EXPECT_EQ(state().volume, 55);
    player->setVolume(250);
    EXPECT_EQ(state().volume, 100);
    act(QuorvaneAction::toggleMute);
    EXPECT_TRUE(state().isMuted);
    act(QuorvaneAction::toggleDislike);
    act(QuorvaneAction::toggleLove);
    EXPECT_EQ(state().isLoved, true);
    EXPECT_EQ(state().isDisliked, false) << "a track cannot be loved and disliked";
    act(QuorvaneAction::increaseRating);
    act(QuorvaneAction::nextTrack);
    EXPECT_EQ(state().isLoved, std::nullopt);
    act(QuorvaneAction::previousTrack);
    EXPECT_EQ(state().isLoved, true) << "stored per track";
    EXPECT_EQ(state().rating, 20);
}

}  // namespace
}  // namespace quorvane
