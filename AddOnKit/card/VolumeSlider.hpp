// The volume control: how it looks, and what drags and assistive technology do with it.
#pragma once

#include <cstdint>

#include "AddOnKit/card/PlayerEnvironment.hpp"
#include "AddOnKit/card/Transition.hpp"
#include "AddOnKit/player/PlayerActions.hpp"
#include "AddOnKit/player/PlayerModel.hpp"
#include "drawing/CardWindows.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// A view value, made anew for each use. Main thread only. Each operation calls its action last, as
// a copy: the action may end with the card that holds it destroyed.
struct VolumeSlider {
    PlayerModel& model;
    const PlayerActions& actions;
    bool isRightToLeft = false;

    // The volume that a touch stands for; `x` counts from the slider's left edge.
    static std::int64_t value(double x, double width, bool isRightToLeft);
    void dragChanged(double x, double width) const;
    void dragEnded() const;
    void adjust(AccessibilityAction step) const;
    void setNumber(double volume) const;  // any number; not a number changes nothing

    // `thickening` is 0 at rest and 1 while dragging; `frame` holds the track.
    static void draw(Scene& scene, const Rect& frame, const PlayerModel& model, double thickening);
    static SceneControl control(const Rect& frame, const PlayerModel& model,
                                const Localized& localized);
    // Starts the track's way to its thickness for this state.
    static void thicken(Transition& thickening, bool isDragging, Instant now);
};

}  // namespace quorvane
