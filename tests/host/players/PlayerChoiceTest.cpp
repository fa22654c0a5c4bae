#include "host/players/PlayerChoice.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace quorvane {
namespace {

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

}  // namespace
}  // namespace quorvane
