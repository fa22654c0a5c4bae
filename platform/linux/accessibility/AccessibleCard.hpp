// Between the card windows and assistive technology. The windows are in the drawing module, the
// connection to the accessibility bus is the program's.
#pragma once

#include "drawing/CardWindows.hpp"

namespace quorvane {

// A card that is to be seen. Main thread only.
class AccessibleCard {
public:
    virtual ~AccessibleCard() = default;
    virtual const Scene& accessibleScene() const = 0;
    // Where the card's own top left corner is, in root pixels, and how many of them are a point.
    virtual Point accessibleOrigin() const = 0;
    virtual double accessibleScale() const = 0;
    virtual Size accessibleSize() const = 0;  // points
    // Both take effect on a later turn of the main loop.
    virtual void perform(SceneControl::ID control, AccessibilityAction action) = 0;
    virtual void setNumber(SceneControl::ID control, double number) = 0;
};

// Who makes cards known. Main thread only; it outlives the cards.
class AccessibleCards {
public:
    virtual ~AccessibleCards() = default;
    virtual void appeared(AccessibleCard& card) = 0;
    virtual void changed(AccessibleCard& card) = 0;  // its scene did
    virtual void disappeared(AccessibleCard& card) = 0;
};

}  // namespace quorvane
