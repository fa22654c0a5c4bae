// What the card remembers of the recent past to draw its movements: presses, the slider's drag, the
// marquees' starts, the artwork that was there before.
#pragma once

#include <optional>

#include "AddOnKit/card/Transition.hpp"
#include "drawing/Image.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// A plain value. At rest every transition stands at 0, but the artwork's, which stands at 1.
struct PlayerInteraction {
    Transition previous{};
    Transition playPause{};
    Transition next{};
    Transition love{};
    Transition thickening{};  // of the volume's track

    std::optional<Instant> titleStart{};
    std::optional<Instant> artistStart{};

    ImageRef oldArtwork{};        // what the present artwork replaces; null: the note
    Transition artworkChange{1};  // from the old one to the present one

    // Nothing for a control that is no button.
    Transition* press(SceneControl::ID control) {
        switch (control) {
            case SceneControl::ID::previous: return &previous;
            case SceneControl::ID::playPause: return &playPause;
            case SceneControl::ID::next: return &next;
            case SceneControl::ID::love: return &love;
            default: return nullptr;
        }
    }

    bool isMoving(Instant now) const {
        for (const Transition* transition :
             {&previous, &playPause, &next, &love, &thickening, &artworkChange})
            if (transition->isMoving(now)) return true;
        return false;
    }
};

}  // namespace quorvane
