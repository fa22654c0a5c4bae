// The state of one press of the primary button on a card. Pure values.
#pragma once

#include <optional>
#include <utility>

#include "drawing/CardWindows.hpp"

namespace quorvane {

// A press begins on the card and continues wherever the pointer moves. Another button cancels it.
class PressTracker {
public:
    static constexpr unsigned kPrimary = 1;

    bool isPressed() const { return isPressed_; }

    // The card's event for an input event, if any. Only down and up have a button.
    std::optional<PointerEvent> handle(PointerEvent::Kind kind, unsigned button, Point location,
                                       bool isOnCard = true) {
        using Kind = PointerEvent::Kind;
        switch (kind) {
            case Kind::down:
                if (isPressed_) return button == kPrimary ? std::nullopt : cancel();
                if (button != kPrimary || !isOnCard) return std::nullopt;
                isPressed_ = true;
                break;
            case Kind::dragged:
                if (!isPressed_ || location == last_) return std::nullopt;
                break;
            case Kind::up:
                if (!isPressed_ || button != kPrimary) return std::nullopt;
                isPressed_ = false;
                break;
            case Kind::cancelled: return cancel();
        }
        last_ = location;
        return PointerEvent{kind, location};
    }
    std::optional<PointerEvent> cancel() {
        if (!std::exchange(isPressed_, false)) return std::nullopt;
        return PointerEvent{PointerEvent::Kind::cancelled, last_};
    }

private:
    bool isPressed_ = false;
    Point last_;
};

}  // namespace quorvane
