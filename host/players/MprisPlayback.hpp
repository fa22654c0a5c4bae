// Playback position of an MPRIS player. The player reports it only occasionally, so it is
// extrapolated in between. Pure values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/players/PlayerSnapshot.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

struct MprisPlayback {
    std::string player;
    std::string trackKey;
    PlaybackAnchor anchor;
    std::optional<Instant> reportedAt{};  // when the player last reported its position
    std::int64_t reported = 0;            // the reported position, in microseconds

    // The playback after a report from the player; `before` is nullopt at first.
    static MprisPlayback following(const std::optional<MprisPlayback>& before,
                                   const MediaPlayer& player, Instant now);
    // Whether the position must be requested, because the extrapolation's basis has changed.
    bool isInDoubt(const std::optional<MprisPlayback>& before) const;
};

}  // namespace quorvane
