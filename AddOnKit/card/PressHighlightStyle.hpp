// Look of a pressed button: a highlight behind it, its symbol a little smaller and dimmer.
#pragma once

#include "AddOnKit/card/Transition.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// Style value.
struct PressHighlightStyle {
    double width = 0;  // of the button
    double height = 0;
    bool circle = true;  // the highlight's shape; otherwise a rounded rectangle of the frame

    // Appends the button, centred in `place`, to the scene. `amount` is 0 at rest, 1 while pressed.
    void draw(Scene& scene, const Rect& place, double amount, SymbolNode symbol) const;
    // Starts the animation to the pressed or the resting look.
    static void turn(Transition& amount, bool isPressed, Instant now);
};

}  // namespace quorvane
