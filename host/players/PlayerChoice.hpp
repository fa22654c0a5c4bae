// Which of several players the card follows. Pure values.
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

// A player that plays goes before one that is paused, that before one that is stopped. Among equals
// the followed one stays, so that a sound from elsewhere does not take the card away; else the one
// that began to play last. A nameless track counts from when it plays, because some idle players
// call themselves paused. A choice by hand holds until its player is gone, or until it does not
// play and another one begins to.
struct PlayerChoice {
    struct Known {
        XPCPlayerState state = XPCPlayerState::unknown;
        std::uint64_t beganToPlay = 0;  // the count at that time; 0: it has not been seen to
        bool operator==(const Known&) const = default;
    };

    std::optional<std::string> current;
    std::optional<std::string> byHand;
    std::map<std::string, Known> known;
    std::uint64_t count = 0;

    [[nodiscard]] PlayerChoice applying(std::span<const PlayerCandidate> candidates) const;
    // The next one in the order of names is chosen by hand.
    [[nodiscard]] PlayerChoice switching() const;
    bool operator==(const PlayerChoice&) const = default;
};

}  // namespace quorvane
