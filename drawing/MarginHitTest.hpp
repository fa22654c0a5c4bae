// Hit test of a card's window on systems whose windows take the mouse in their whole rectangle. The
// card takes it; the shadow's margin leaves it to the lock screen below. Pure values.
#pragma once

#include "drawing/CardWindows.hpp"

namespace quorvane {

class MarginHitTest {
public:
    // The window owner's setting. While true, the pointer's place does not matter.
    void setIgnored(bool isIgnored) {
        isIgnored_ = isIgnored;
        if (isIgnored) isPressed_ = false;  // the release would not be received
    }
    void setCard(const CardStyle& style) {
        card_ = {style.shadowMargin, style.shadowMargin, style.card.width, style.card.height};
        window_ = {0, 0, style.card.width + 2 * style.shadowMargin,
                   style.card.height + 2 * style.shadowMargin};
    }
    // In window coordinates. The card is centred in the window, so y may grow either way.
    void moveTo(Point pointer) {
        isInMargin_ = window_.contains(pointer) && !card_.contains(pointer);
    }
    // A press that began on the card continues wherever the pointer moves.
    void setPressed(bool isPressed) { isPressed_ = isPressed; }

    bool ignoresMouse() const { return isIgnored_ || leavesItToLockScreen(); }
    // A window that ignores the mouse receives no movements, so the pointer must then be polled.
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
