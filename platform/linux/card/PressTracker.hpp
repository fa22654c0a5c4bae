// The state of one press of the primary button on a card. Pure values.
#pragma once

#include <optional>

#include "drawing/CardWindows.hpp"

namespace quorvane {

// A press begins on the card and continues wherever the pointer moves. Another button cancels it.
class PressTracker {
public:
    bool isPressed() const { return isPressed_; }

    std::optional<PointerEvent> down(unsigned button, Point location, bool isOnCard) {
        if (isPressed_) return button == kPrimary ? std::nullopt : cancel();
        if (button != kPrimary || !isOnCard) return std::nullopt;
        isPressed_ = true;
        return report(PointerEvent::Kind::down, location);
    }
    std::optional<PointerEvent> moved(Point location) {
        if (!isPressed_ || location == last_) return std::nullopt;
        return report(PointerEvent::Kind::dragged, location);
    }
    std::optional<PointerEvent> up(unsigned button, Point location) {
        if (!isPressed_ || button != kPrimary) return std::nullopt;
        isPressed_ = false;
        return report(PointerEvent::Kind::up, location);
    }
    std::optional<PointerEvent> cancel() {
        if (!isPressed_) return std::nullopt;
        isPressed_ = false;
        return report(PointerEvent::Kind::cancelled, last_);
    }

private:
    static constexpr unsigned kPrimary = 1;

    PointerEvent report(PointerEvent::Kind kind, Point location) {
        last_ = location;
        return {kind, location};
    }

    bool isPressed_ = false;
    Point last_;
};

}  // namespace quorvane
