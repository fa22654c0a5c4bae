// Rule that decides which of several players the card follows. Pure values.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"

namespace quorvane {

// A player that has a track.
struct PlayerCandidate {
    std::string name;
    XPCPlayerState state = XPCPlayerState::unknown;
    bool isNameless = false;  // its track has neither a title nor a URL
};

// A playing player precedes a paused one, a paused one precedes a stopped one. Among equals the
// followed player stays, so that a sound from another player does not take over the card. Otherwise
// the player that started last wins. A nameless track counts only once it has played, because some
// idle players report themselves as paused. A manual choice holds until its player quits, or until
// it is not playing and another one starts.
struct PlayerChoice {
    struct Known {
        XPCPlayerState state = XPCPlayerState::unknown;
        std::uint64_t beganToPlay = 0;  // the count at that time; 0: never seen playing
        bool operator==(const Known&) const = default;
    };

    std::optional<std::string> current;
    std::optional<std::string> byHand;
    std::map<std::string, Known> known;
    std::uint64_t count = 0;

    [[nodiscard]] PlayerChoice applying(std::span<const PlayerCandidate> candidates) const;
    // Chooses the next player by name, as a manual choice.
    [[nodiscard]] PlayerChoice switching() const;
    bool operator==(const PlayerChoice&) const = default;
};

}  // namespace quorvane
