// Which player a player source chooses and what it reports.
#include <gtest/gtest.h>

#include <sstream>

#include "host/players/PlayerChoice.hpp"
#include "host/players/PlayerSnapshot.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// In a step, "a+ b- c. = a" means that a plays, b is paused and c is stopped, and that a is chosen.
// "a+?" has no title, "a+!" cannot be controlled, "a+x" is ignored, "a+2" has a new track. Players
// p and q are preferred to a to f. "switch" is the command, "wait" passes five of the ten minutes.
PlayerCandidate candidate(const std::string& word) {
    const XPCPlayerState state = word[1] == '+'   ? XPCPlayerState::playing
                                 : word[1] == '-' ? XPCPlayerState::paused
                                                  : XPCPlayerState::stopped;
    return {.name = word.substr(0, 1),
            .state = state,
            .track = word.ends_with('2') ? "two" : "one",
            .isNameless = word.ends_with('?'),
            .canBeControlled = !word.ends_with('!'),
            .preference = word[0] < 'p' ? 1u : 0u,
            .obstacle = word.ends_with('x') ? "ignored" : ""};
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
        {"a+ b+ c- = a", "switch = b", "a+ b+ c+ = b", "a+ b- c+ = b", "a+ c+ = c"},
        {"a+ b-! c- d-x = a", "switch = c", "a+ b- c-x = a", "a+ b- c- = c"},
        {"a-! = a", "switch = a", "a-! b+ = b"},
        {"a+ p- = a", "a+ p+ = p", "a+ p- = a", "a+ p+ q+ = p", "b+ p+x = b"},
        {"a- = a", "wait = a", "a- b. = a", "wait = a", "a- b. = b", "a-2 b. = a", "a-2 = a"},
        {"a- b- = a", "wait = a", "switch = b", "wait = b", "a- b- = b", "wait = b", "a- b- ="},
        {"a+ = a", "wait = a", "wait = a", "a- = a", "wait = a", "wait = a", "a- =", "a+ = a"},
    };
    for (const auto& story : stories) {
        PlayerChoice choice;
        Instant now{};
        for (const std::string& step : story) {
            std::istringstream words{step};
            std::vector<PlayerCandidate> candidates;
            std::string word;
            while (words >> word && word != "=" && word.size() < 4)
                candidates.push_back(candidate(word));
            if (word == "wait")
                now += 5min;
            else
                choice = word == "switch" ? choice.switching(now)
                                          : choice.applying(candidates, now, 10min);
            const std::string chosen = step.ends_with('=') ? "" : step.substr(step.size() - 1);
            EXPECT_EQ(choice.current.value_or(""), chosen)
                << testing::PrintToString(story) << " at " << step;
        }
    }
}

TEST(PlayerChoice, SaysWhyAPlayerIsFollowedOrNot) {
    PlayerChoice choice;
    const auto explanationsAt = [&](Instant now, const std::vector<const char*>& words) {
        std::vector<PlayerCandidate> candidates;
        for (const char* word : words) candidates.push_back(candidate(word));
        choice = choice.applying(candidates, now, 10min);
        std::string all;
        for (const auto& [name, known] : choice.known)
            all += std::string{choice.explanationOf(name)} + "\n";
        return all;
    };
    EXPECT_EQ(explanationsAt(Instant{}, {"a-", "b-x", "c-?", "d."}),
              "followed: no other one plays\nignored\nhas not played yet\nanother one is paused\n");
    EXPECT_EQ(explanationsAt(Instant{10min}, {"a-", "b+", "c+", "p-"}),
              "idle for too long (see the setting idle-minutes)\nfollowed: it plays\n"
              "another one is followed already\nanother one plays\n");
    choice = choice.switching(Instant{10min});
    EXPECT_EQ(explanationsAt(Instant{11min}, {"b+", "c+", "p+"}),
              "another one was chosen by hand\nfollowed: chosen by hand\n"
              "another one was chosen by hand\n");
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
        // The position that a receiver extrapolates.
        EXPECT_NEAR(state.playerPosition + secondsBetween(state.timestamp, moment),
                    snapshot.anchor.secondsAt(kNow + elapsed), 1e-9);
    }
    snapshot.anchor.isPlaying = false;
    EXPECT_DOUBLE_EQ(stateAt(snapshot, kNow + 10s, kWallTime + 700ms).playerPosition, 0.2);
}

TEST(IsNews, OnlyWhatAReceiverCannotForesee) {
    const PlayerSnapshot before = playing(10, kNow);
    const Instant later = kNow + 20s;
    EXPECT_FALSE(mustBeAnnounced(before, playing(30, later), later));
    EXPECT_FALSE(mustBeAnnounced(before, playing(30.2, later), later));
    EXPECT_TRUE(mustBeAnnounced(before, playing(29.7, later), later));
    EXPECT_TRUE(mustBeAnnounced(before, playing(30.3, later), later));
    PlayerSnapshot after[4] = {before, before, before, before};
    after[0].state.volume = 3;
    after[1].state.track->artworkData.emplace(Bytes(3));
    after[2].anchor.isPlaying = false;
    after[3].anchor.rate = 1.25;
    for (const PlayerSnapshot& each : after)
        EXPECT_TRUE(mustBeAnnounced(before, each, kNow)) << &each - after;
}

}  // namespace
}  // namespace quorvane
