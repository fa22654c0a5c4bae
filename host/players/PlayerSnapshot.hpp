// What a player is doing, as a value from which its state at any moment follows.
#pragma once

#include <optional>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// Where playback stood at one moment and how it goes on from there.
struct PlaybackAnchor {
    double seconds = 0;
    Instant at{};
    double rate = 1;
    bool isPlaying = false;
    std::optional<double> duration{};  // seconds; playback stands still when it gets there

    double secondsAt(Instant now) const;
    // The same playback, told from `now`.
    PlaybackAnchor movedTo(Instant now) const;
    bool operator==(const PlaybackAnchor&) const = default;
};

struct PlayerSnapshot {
    QuorvanePlayerState state;  // its position and timestamp are not looked at: the anchor tells
    PlaybackAnchor anchor;
};

// The record that is handed out at a moment, given on both clocks. Timestamps are whole seconds on
// the wire, and the receiver reckons from them at normal speed. Therefore the moment is given as
// the last whole second and the position is set back by what is cut off, below 0 if need be: the
// receiver arrives at the position of this very moment.
QuorvanePlayerState stateAt(const PlayerSnapshot& snapshot, Instant now, WallTime wallTime);

// Whether a receiver that follows `before` by itself has to hear of `after`. Playback that merely
// went on as foretold is no news.
bool isNews(const PlayerSnapshot& before, const PlayerSnapshot& after, Instant now);

}  // namespace quorvane
