// What a player source chooses and what it tells.
#include <gtest/gtest.h>

#include <sstream>

#include "host/players/PlayerChoice.hpp"
#include "host/players/PlayerSnapshot.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// In a step, "a+ b- c. = a" says that a plays, b is paused and c is stopped, and that a is chosen.
// "a+?" has no title. "switch" stands for the command.
PlayerCandidate candidate(const std::string& word) {
    const XPCPlayerState state = word[1] == '+'   ? XPCPlayerState::playing
                                 : word[1] == '-' ? XPCPlayerState::paused
                                                  : XPCPlayerState::stopped;
    return {word.substr(0, 1), state, word.ends_with('?')};
}

TEST(PlayerChoice, FollowsEachStory) {
    const std::vector<std::string> stories[] = {
        {"a. = a", "a. b- = b", "a+ b- = a"},
        {"a+ b- = a", "a+ b+ = a", "a- b+ = b", "a- b- = b"},
        {"c+ = c", "b+ c+ = c", "a+ b+ c+ = c", "a+ b+ = a"},
        {"a+ b- c+ = a", "a- b- c+ = c", "a- b- = a"},
        {"a-? =", "a+? = a", "a-? = a"},
        {"switch =", "a+ = a", "=", "a- = a"},
        {"a+ b- = a", "switch = b", "a+ b- = b", "switch = a", "a- b- = a"},
        {"a+ b- c- = a", "switch = b", "a+ b- c+ = c"},
        {"a+ b+ c- = a", "switch = b", "a+ b+ c+ = b", "a+ b- c+ = b", "a+ c+ = c"},
    };
    for (const auto& story : stories) {
        PlayerChoice choice;
        for (const std::string& step : story) {
            std::istringstream words{step};
            std::vector<PlayerCandidate> candidates;
            std::string word;
            while (words >> word && word != "=" && word != "switch")
                candidates.push_back(candidate(word));
            choice = word == "switch" ? choice.switching() : choice.applying(candidates);
            const std::string chosen = step.ends_with('=') ? "" : step.substr(step.size() - 1);
            EXPECT_EQ(choice.current.value_or(""), chosen)
                << testing::PrintToString(story) << " at " << step;
        }
    }
}

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
