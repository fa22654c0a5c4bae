// From the words of MPRIS to the records of the link. Pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

// The player's state without artwork, volume, position and timestamp. It has no track when nothing
// is loaded.
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

// Whether the player permits what the flag, such as "CanPause", stands for; true when it does not
// say.
bool allows(const MediaPlayer& player, std::string_view flag);

// Whether the player gives its track neither a title nor a URL.
bool isNameless(const MediaPlayer& player);

// The player's "Volume", 0...1; nullopt when it has none.
std::optional<double> ownVolumeOf(const MediaPlayer& player);

}  // namespace quorvane
