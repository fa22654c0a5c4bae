// The volume control: its look and its response to drags and assistive technology.
#pragma once

#include <cstdint>

#include "AddOnKit/card/PlayerEnvironment.hpp"
#include "AddOnKit/card/Transition.hpp"
#include "AddOnKit/player/PlayerActions.hpp"
#include "AddOnKit/player/PlayerModel.hpp"
#include "drawing/CardWindows.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// View value, created for each use. Main thread only. Each operation calls its action last, as a
// copy, because the action may destroy the card that holds it.
struct VolumeSlider {
    PlayerModel& model;
    const PlayerActions& actions;
    bool isRightToLeft = false;

    // The volume at a touch position; `x` is measured from the slider's left edge.
    static std::int64_t value(double x, double width, bool isRightToLeft);
    void dragChanged(double x, double width) const;
    void dragEnded() const;
    void adjust(AccessibilityAction step) const;
    void setNumber(double volume) const;  // clamped to 0...100; NaN changes nothing

    // `thickening` is 0 at rest and 1 while dragging; `frame` holds the track.
    static void draw(Scene& scene, const Rect& frame, const PlayerModel& model, double thickening);
    static SceneControl control(const Rect& frame, const PlayerModel& model,
                                const Localized& localized);
    // Starts the track's animation to its thickness for this state.
    static void thicken(Transition& thickening, bool isDragging, Instant now);
};

}  // namespace quorvane
