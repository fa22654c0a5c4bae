// State that the card keeps to draw its animations: presses, the slider's drag, the marquees'
// starts and the previous artwork.
#pragma once

#include <optional>

#include "AddOnKit/card/Transition.hpp"
#include "drawing/Image.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// Plain value. At rest every transition is at 0, except the artwork's, which is at 1.
struct PlayerInteraction {
    Transition previous{};
    Transition playPause{};
    Transition next{};
    Transition love{};
    Transition thickening{};  // of the volume's track

    std::optional<Instant> titleStart{};
    std::optional<Instant> artistStart{};

    ImageRef oldArtwork{};        // replaced by the present artwork; null: the placeholder note
    Transition artworkChange{1};  // from the old one to the present one

    // Null for a control that is not a button.
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
