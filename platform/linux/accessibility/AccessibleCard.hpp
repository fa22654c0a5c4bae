// Interface between the card windows, which are in the card module, and the program's connection
// to the accessibility bus.
#pragma once

#include "drawing/CardWindows.hpp"

namespace quorvane {

// A visible card. Main thread only.
class AccessibleCard {
public:
    virtual ~AccessibleCard() = default;
    virtual const Scene& accessibleScene() const = 0;
    // The card's top left corner in pixels of the root, or of its screen on Wayland, and the number
    // of pixels per point.
    virtual Point accessibleOrigin() const = 0;
    virtual double accessibleScale() const = 0;
    virtual Size accessibleSize() const = 0;  // points
    // Both take effect on a later turn of the main loop.
    virtual void perform(SceneControl::ID control, AccessibilityAction action) = 0;
    virtual void setNumber(SceneControl::ID control, double number) = 0;
};

// Registry that exposes cards. Main thread only; outlives the cards.
class AccessibleCards {
public:
    virtual ~AccessibleCards() = default;
    virtual void appeared(AccessibleCard& card) = 0;
    virtual void changed(AccessibleCard& card) = 0;  // its scene changed
    virtual void disappeared(AccessibleCard& card) = 0;
};

}  // namespace quorvane
