// Where the music comes from: the players of the session, or a script.
#pragma once

#include <cstdint>
#include <functional>

#include "QuorvaneKit/QuorvaneAction.hpp"
#include "host/PlayerSnapshot.hpp"

namespace quorvane {

// Main thread only.
class PlayerSource {
public:
    virtual ~PlayerSource() = default;

    virtual PlayerSnapshot snapshot() const = 0;
    // What the player cannot do is ignored.
    virtual void perform(QuorvaneAction action) = 0;
    virtual void setVolume(std::int64_t percent) = 0;  // taken as 0...100
    virtual void setRating(std::int64_t percent) = 0;  // taken as 0...100
    // Somebody is looking: what the player does not announce is brought up to date, soon after.
    virtual void freshen() {}

    // Called after the snapshot may have changed, never inside `snapshot`.
    std::function<void()> onChanged;
};

}  // namespace quorvane
