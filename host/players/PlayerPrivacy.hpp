// What of a player's state leaves the host. Pure functions.
#pragma once

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "host/settings/Settings.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

// The grade of the player's own name, of the longest one that matches, else the general one.
Privacy privacyOf(const MediaPlayer& player, const Settings& settings);

// The state without what the grade withholds. Below `full` a track is made of named fields, so
// that a field that is added later is withheld too.
QuorvanePlayerState withheld(QuorvanePlayerState state, const MediaPlayer& player, Privacy privacy);

}  // namespace quorvane
