#include "host/players/PlayerChoice.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace quorvane {
namespace {

constexpr auto kPlaying = XPCPlayerState::playing;
constexpr auto kPaused = XPCPlayerState::paused;
constexpr auto kStopped = XPCPlayerState::stopped;

struct Step {
    std::vector<PlayerCandidate> candidates;
    std::string chosen;  // "" for none
    bool switches = false;
};

struct Story {
    const char* name;
    std::vector<Step> steps;
};

class PlayerChoiceStories : public testing::TestWithParam<Story> {};

TEST_P(PlayerChoiceStories, IsChosen) {
    PlayerChoice choice;
    int number = 0;
    for (const Step& step : GetParam().steps) {
        ++number;
        choice = step.switches ? choice.switching() : choice.applying(step.candidates);
        EXPECT_EQ(choice.current.value_or(""), step.chosen) << "step " << number;
    }
}

Step switching(std::string chosen) { return {{}, std::move(chosen), true}; }

INSTANTIATE_TEST_SUITE_P(
    PlayerChoice, PlayerChoiceStories,
    testing::Values(
        Story{"PlayingBeforePausedBeforeStopped",
              {{{{"a", kStopped}}, "a"},
               {{{"a", kStopped}, {"b", kPaused}}, "b"},
               {{{"a", kPlaying}, {"b", kPaused}}, "a"}}},
        Story{"TheOneThatPlaysKeepsTheCard",
              {{{{"a", kPlaying}, {"b", kPaused}}, "a"},
               {{{"a", kPlaying}, {"b", kPlaying}}, "a"},
               {{{"a", kPaused}, {"b", kPlaying}}, "b"}}},
        Story{"PausedTogetherTheLastOneStays",
              {{{{"a", kPaused}, {"b", kPlaying}}, "b"}, {{{"a", kPaused}, {"b", kPaused}}, "b"}}},
        Story{"TheOneThatBeganToPlayLast",
              {{{{"c", kPlaying}}, "c"},
               {{{"b", kPlaying}, {"c", kPlaying}}, "c"},
               {{{"a", kPlaying}, {"b", kPlaying}, {"c", kPlaying}}, "c"},
               {{{"a", kPlaying}, {"b", kPlaying}}, "a"}}},
        Story{"ThePausedOneThatPlayedLast",
              {{{{"a", kPlaying}, {"b", kPaused}, {"c", kPlaying}}, "a"},
               {{{"a", kPaused}, {"b", kPaused}, {"c", kPlaying}}, "c"},
               {{{"a", kPaused}, {"b", kPaused}}, "a"}}},
        Story{"ANamelessOneFromWhenItPlays",
              {{{{"a", kPaused, true}}, ""},
               {{{"a", kPlaying, true}}, "a"},
               {{{"a", kPaused, true}}, "a"}}},
        Story{"GoneIsGone",
              {switching(""), {{{"a", kPlaying}}, "a"}, {{}, ""}, {{{"a", kPaused}}, "a"}}},
        Story{"AChoiceByHandStandsAgainstPlaying",
              {{{{"a", kPlaying}, {"b", kPaused}}, "a"},
               switching("b"),
               {{{"a", kPlaying}, {"b", kPaused}}, "b"},
               switching("a"),
               {{{"a", kPaused}, {"b", kPaused}}, "a"}}},
        Story{"AChoiceByHandEndsWhenAnotherBeginsToPlay",
              {{{{"a", kPlaying}, {"b", kPaused}, {"c", kPaused}}, "a"},
               switching("b"),
               {{{"a", kPlaying}, {"b", kPaused}, {"c", kPlaying}}, "c"}}},
        Story{"AChoiceByHandThatPlaysStays",
              {{{{"a", kPlaying}, {"b", kPlaying}, {"c", kPaused}}, "a"},
               switching("b"),
               {{{"a", kPlaying}, {"b", kPlaying}, {"c", kPlaying}}, "b"},
               {{{"a", kPlaying}, {"b", kPaused}, {"c", kPlaying}}, "b"},
               {{{"a", kPlaying}, {"c", kPlaying}}, "c"}}}),
    [](const auto& story) { return story.param.name; });

}  // namespace
}  // namespace quorvane
