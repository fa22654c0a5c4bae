// Playback of a player, as a value that determines its state at any moment.
#pragma once

#include <optional>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

// Seconds. A longer track is treated as one without a length.
inline constexpr double kLongestTrack = 7 * 24 * 3600;

// The position at one moment and how playback continues from there.
struct PlaybackAnchor {
    double seconds = 0;
    Instant at{};
    double rate = 1;
    bool isPlaying = false;
    std::optional<double> duration{};  // seconds; playback stops there

    double secondsAt(Instant now) const;
    // The same playback, anchored at `now`.
    PlaybackAnchor movedTo(Instant now) const;
    bool operator==(const PlaybackAnchor&) const = default;
};

struct PlayerSnapshot {
    QuorvanePlayerState state;  // its position and timestamp are ignored in favour of the anchor
    PlaybackAnchor anchor;
};

// The record to send at a moment, given on both clocks. Timestamps are whole seconds on the wire,
// and the receiver extrapolates from them at normal speed. So the timestamp is the last whole
// second, and the position is reduced by the fraction that is cut off, below 0 if needed. The
// receiver then arrives at the exact position of this moment.
QuorvanePlayerState stateAt(const PlayerSnapshot& snapshot, Instant now, WallTime wallTime);

// Whether a receiver that extrapolates from `before` must be notified of `after`. Normal playback
// progress does not count as a change.
bool mustBeAnnounced(const PlayerSnapshot& before, const PlayerSnapshot& after, Instant now);

}  // namespace quorvane
