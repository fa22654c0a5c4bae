// Translation from MPRIS to the records of the link. Pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

// The player's state without artwork, volume, position and timestamp. The track is absent when none
// is loaded.
QuorvanePlayerState playerStateOf(const MediaPlayer& player);

// "mpv.instance7" of "org.mpris.MediaPlayer2.mpv.instance7".
std::string_view nameOnBus(const MediaPlayer& player);
// The name that the player gives itself, else the first part of its bus name.
std::string playerNameOf(const MediaPlayer& player);
// Differs between two tracks of one player; "" when no track is loaded.
std::string trackKeyOf(const MediaPlayer& player);
// The playback speed, 1 unless the player reports another plausible one.
double rateOf(const MediaPlayer& player);

// Whether the bus name, after its common prefix and in any case, is `name` or begins with `name`
// and a dot: "mpv" matches "org.mpris.MediaPlayer2.mpv" and "org.mpris.MediaPlayer2.mpv.instance7".
bool isNamed(const MediaPlayer& player, std::string_view name);

// Whether the player allows the operation of the flag, such as "CanPause"; true when the flag is
// absent.
bool allows(const MediaPlayer& player, std::string_view flag);

// Whether the player gives its track neither a title nor a URL.
bool isNameless(const MediaPlayer& player);

// The player's "Volume", 0...1; nullopt when it has none.
std::optional<double> ownVolumeOf(const MediaPlayer& player);

}  // namespace quorvane
