// Whether a card's window takes the mouse, for systems whose windows take it on their whole
// rectangle: on the card it does, on the shadow's margin the lock screen below is to have it. Pure
// values.
#pragma once

#include "drawing/CardWindows.hpp"

namespace quorvane {

class MarginMouse {
public:
    // What the window's owner wants; while it is ignored altogether the pointer is of no interest.
    void setIgnored(bool isIgnored) {
        isIgnored_ = isIgnored;
        if (isIgnored) isPressed_ = false;  // its end would not be heard
    }
    void setCard(const CardStyle& style) {
        card_ = {style.shadowMargin, style.shadowMargin, style.card.width, style.card.height};
        window_ = {0, 0, style.card.width + 2 * style.shadowMargin,
                   style.card.height + 2 * style.shadowMargin};
    }
    // In window coordinates. The card lies in the window's middle, so either way of y will do.
    void moveTo(Point pointer) {
        isInMargin_ = window_.contains(pointer) && !card_.contains(pointer);
    }
    // A press that began on the card goes on wherever the pointer moves.
    void setPressed(bool isPressed) { isPressed_ = isPressed; }

    bool ignoresMouse() const { return isIgnored_ || leavesItToLockScreen(); }
    // A window that ignores the mouse hears of no movement: the pointer must then be asked for.
    bool mustAskForPointer() const { return !isIgnored_ && leavesItToLockScreen(); }

private:
    bool leavesItToLockScreen() const { return isInMargin_ && !isPressed_; }

    Rect card_{};
    Rect window_{};
    bool isIgnored_ = true;
    bool isInMargin_ = false;
    bool isPressed_ = false;
};

}  // namespace quorvane
