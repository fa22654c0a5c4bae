// Rule that decides which of several players the card follows. Pure values.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

struct PlayerCandidate {
    std::string name;
    XPCPlayerState state = XPCPlayerState::unknown;
    std::string track{};          // differs between two tracks
    bool isNameless = false;      // its track has neither a title nor a URL
    bool canBeControlled = true;  // by the card
    std::size_t preference = 0;   // the user's order: 0 comes first
    std::string_view obstacle{};  // why it cannot be followed, for the user; "" if it can
    bool operator==(const PlayerCandidate&) const = default;
};

// A playing player precedes a paused one, a paused one precedes a stopped one. Among equals the
// user's preference decides, then the followed player stays, so that a sound from another player
// does not take over the card. Otherwise the player that started last wins. A nameless track counts
// only once it has played, because some idle players report themselves as paused. A player that has
// neither played nor changed its track for the idle time cannot be followed until it does. A manual
// choice holds until its player quits; while that player cannot be followed, the rule decides.
struct PlayerChoice {
    struct Known {
        PlayerCandidate player;
        std::uint64_t beganToPlay = 0;  // the count at that time; 0: never seen playing
        Instant quietSince{};           // the last change of state or track
        bool operator==(const Known&) const = default;
    };

    std::optional<std::string> current;
    std::optional<std::string> byHand;
    std::map<std::string, Known> known;
    std::uint64_t count = 0;

    // An idle time of 0 never passes.
    [[nodiscard]] PlayerChoice applying(std::span<const PlayerCandidate> candidates, Instant now,
                                        Duration idleTime) const;
    // Chooses the next player by name that can be controlled, as a manual choice.
    [[nodiscard]] PlayerChoice switching(Instant now) const;
    // When the followed player will have been idle for too long, unless it changes; nullopt: never.
    std::optional<Instant> idleAt(Duration idleTime) const;
    // For the user: that a known player is followed, or why it is not.
    std::string_view explanationOf(const std::string& name) const;
    bool operator==(const PlayerChoice&) const = default;
};

}  // namespace quorvane
