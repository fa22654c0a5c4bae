// The effect of the settings on one player. Pure functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "host/settings/Settings.hpp"
#include "platform/MediaPlayers.hpp"

namespace quorvane {

// Why the host leaves the player alone, for the user; "" if it does not. With a name, it considers
// only players of that name.
std::string_view obstacleOf(const MediaPlayer& player, const Settings& settings,
                            const std::optional<std::string>& onlyNamed);

// The grade of the player's own name, of the longest one that matches, else the general one.
Privacy privacyOf(const MediaPlayer& player, const Settings& settings);

// The state without the fields that the grade withholds. Below `full` a track is made of named
// fields, so that a field that is added later is withheld too.
QuorvanePlayerState withheld(QuorvanePlayerState state, const MediaPlayer& player, Privacy privacy);

}  // namespace quorvane
