// Problems of this login session that keep the card from working. Each is a sentence for the user:
// the problem, then what to do.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quorvane {

struct LiveServices;

struct SessionProblems {
    std::optional<std::string> screen{};  // no card can show
    std::optional<std::string> advice{};  // what the user must do for it
    std::optional<std::string> ports{};   // no host can be reached
    std::optional<std::string> bus{};     // no notices and no players

    std::vector<std::string> sentences() const {
        std::vector<std::string> all;
        for (const auto& problem : {screen, advice, ports, bus})
            if (problem) all.push_back(*problem);
        return all;
    }
};

// Main thread only.
SessionProblems findSessionProblems(const LiveServices& services);
// Finds only the `ports` problem. Any thread.
std::optional<std::string> findPortsProblem();

}  // namespace quorvane
