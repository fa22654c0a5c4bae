// The pointer over a card: presses for its content, and an arrow where the locker hides its own.
// The locker may move the card away from under the pointer, and show or hide its own, at any time.
#pragma once

#include <functional>
#include <optional>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/CardShape.hpp"
#include "platform/linux/card/LockerChild.hpp"
#include "platform/linux/card/PressTracker.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// Main thread only. Lives while a card takes presses: the server is asked for the pointer for only
// as long. Lockers hold the pointer grabbed, so no window gets it; its raw events do come, and the
// place is compared with the card's.
class CardPointer {
public:
    struct Listener {
        std::function<void(const PointerEvent&)> event;
        // Where an arrow is to be drawn, in stage coordinates, or that none is.
        std::function<void(std::optional<Point>)> arrow;
    };

    // The child outlives it. A press that is under way when it ends is cancelled.
    CardPointer(X11Session& x11, LockerChild& child, const CardStyle& style, double scale,
                Listener listener);
    ~CardPointer();
    CardPointer(const CardPointer&) = delete;
    CardPointer& operator=(const CardPointer&) = delete;

    // The card is elsewhere now, the pointer where it was.
    void cardMoved();

private:
    Point locationOf(Point rootPoint) const;
    bool isOnCard(Point rootPoint) const;
    void handle(const RawPointerEvent& event);
    void observeCursor();
    void lookAgain();
    void moved(Point rootPoint);
    void report(const std::optional<PointerEvent>& event);
    bool lockerHidesPointer();

    X11Session& x11_;
    LockerChild& child_;
    CardStyle style_;
    CardShape shape_;
    double scale_;
    Listener listener_;
    PressTracker press_;
    bool isOver_ = false;
    bool showsArrow_ = false;
    Handle presses_;
    Handle moves_;
    Handle cursorChanges_;
};

}  // namespace quorvane
