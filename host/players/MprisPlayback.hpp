// Where an MPRIS player's playback stands. Its position is heard of only now and then, so it is
// reckoned in between. Pure values.
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
    std::optional<Instant> heardAt{};  // when the player last told its position
    std::int64_t heard = 0;            // what it told, in microseconds

    // The playback after the player has said something; `before` is empty at first.
    static MprisPlayback following(const std::optional<MprisPlayback>& before,
                                   const MediaPlayer& player, Instant now);
    // Whether the position has to be asked for: what is reckoned rests on something that changed.
    bool isInDoubt(const std::optional<MprisPlayback>& before) const;
};

}  // namespace quorvane
