// The card's content as a scene: artwork, title and artist, heart, progress with its times,
// transport buttons and volume.
#pragma once

#include "AddOnKit/card/PlayerEnvironment.hpp"
#include "AddOnKit/card/PlayerInteraction.hpp"
#include "AddOnKit/card/PlayerScene.hpp"
#include "AddOnKit/player/PlayerModel.hpp"

namespace quorvane {

// One moment on both clocks.
struct PlayerMoment {
    Instant now;
    WallTime date;
};

// View value: the same model, interaction, moment and environment give the same scene. Main thread
// only.
struct PlayerView {
    const PlayerModel& model;
    const PlayerEnvironment& environment;

    PlayerScene scene(const PlayerInteraction& interaction, const PlayerMoment& moment) const;
};

}  // namespace quorvane
