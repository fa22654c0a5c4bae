// From the words of MPRIS to the records of the link. Pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QuorvaneKit/QuorvanePlayerState.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

// The player's state without artwork, position and timestamp. It has no track when nothing is
// loaded.
QuorvanePlayerState playerStateOf(const MediaPlayer& player);

// Where the artwork of the current track is said to be; "" when it has none.
std::string artworkURLOf(const MediaPlayer& player);
// Differs between two tracks of one player; "" when nothing is loaded.
std::string trackKeyOf(const MediaPlayer& player);
// The playback speed, 1 unless the player states another sensible one.
double rateOf(const MediaPlayer& player);

// A player that only repeats what another one says.
bool isProxy(const MediaPlayer& player);
// Whether the name's last parts are `name`: "mpv" fits "org.mpris.MediaPlayer2.mpv" and
// "org.mpris.MediaPlayer2.mpv.instance7".
bool isNamed(const MediaPlayer& player, std::string_view name);

// The player's volume, 0...1; nothing when it has none.
std::optional<double> volumeOf(const MediaPlayer& player);

}  // namespace quorvane
