// Source of the music: the players of the session, or a script.
#pragma once

#include <cstdint>
#include <functional>

#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "host/players/PlayerList.hpp"
#include "host/players/PlayerSnapshot.hpp"

namespace quorvane {

// Main thread only.
class PlayerSource {
public:
    virtual ~PlayerSource() = default;

    virtual PlayerSnapshot snapshot() const = 0;
    // These return false, and change nothing, when the player lacks the command.
    virtual bool perform(QuorvaneAction action) = 0;
    virtual bool setVolume(std::int64_t percent) = 0;  // clamped to 0...100
    virtual bool setRating(std::int64_t percent) = 0;  // clamped to 0...100
    // All players that were considered.
    virtual PlayerList players() const { return {}; }
    // A client asked for the state: soon afterwards, updates the fields whose changes the player
    // does not announce.
    virtual void refresh() {}

    // Called after the snapshot may have changed, never inside `snapshot`.
    std::function<void()> onChanged;
};

}  // namespace quorvane
