#include "host/players/PlayerSnapshot.hpp"

#include <algorithm>
#include <cmath>

#include "platform/Seconds.hpp"

namespace quorvane {

namespace {

// A smaller difference is not visible on the card, which shows whole seconds and a slow bar.
constexpr double kNoticeableSeconds = 0.3;

}  // namespace

double PlaybackAnchor::secondsAt(Instant now) const {
    const double elapsed = isPlaying ? std::max(0.0, secondsOf(now - at)) * rate : 0;
    const double position = std::max(0.0, seconds + elapsed);
    return duration ? std::min(position, *duration) : position;
}

PlaybackAnchor PlaybackAnchor::movedTo(Instant now) const {
    PlaybackAnchor moved = *this;
    moved.seconds = secondsAt(now);
    moved.at = now;
    return moved;
}

QuorvanePlayerState stateAt(const PlayerSnapshot& snapshot, Instant now, WallTime wallTime) {
    QuorvanePlayerState state = snapshot.state;
    const WallTime wholeSecond = std::chrono::floor<std::chrono::seconds>(wallTime);
    state.timestamp = wholeSecond;
    state.playerPosition = snapshot.anchor.secondsAt(now);
    if (snapshot.anchor.isPlaying) state.playerPosition -= secondsOf(wallTime - wholeSecond);
    return state;
}

bool mustBeAnnounced(const PlayerSnapshot& before, const PlayerSnapshot& after, Instant now) {
    // The state at a fixed moment; the comparison below handles the position.
    const auto withoutPosition = [](const PlayerSnapshot& snapshot) {
        return stateAt({snapshot.state, {}}, {}, {});
    };
    if (withoutPosition(before) != withoutPosition(after)) return true;
    if (before.anchor.isPlaying != after.anchor.isPlaying ||
        before.anchor.rate != after.anchor.rate)
        return true;
    const double difference = after.anchor.secondsAt(now) - before.anchor.secondsAt(now);
    return std::abs(difference) >= kNoticeableSeconds;
}

}  // namespace quorvane
