// Look of a pressed button: a round highlight behind it, its symbol a little smaller and dimmer.
#pragma once

#include "AddOnKit/card/Transition.hpp"
#include "drawing/Scene.hpp"

namespace quorvane::PressHighlightStyle {

// Appends a button to the scene. `frame` is square; `amount` is 0 at rest, 1 while pressed.
void draw(Scene& scene, const Rect& frame, double amount, SymbolNode symbol);
// Starts the animation to the pressed or the resting look.
void turn(Transition& amount, bool isPressed, Instant now);

}  // namespace quorvane::PressHighlightStyle
