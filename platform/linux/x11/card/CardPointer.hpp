// The pointer over a card: presses for its content, and an arrow where the locker hides the
// pointer. At any time the card may move away from under the pointer, and the locker may show or
// hide the pointer.
#pragma once

#include <functional>
#include <optional>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/CardShape.hpp"
#include "platform/linux/card/PressTracker.hpp"
#include "platform/linux/x11/X11Session.hpp"
#include "platform/linux/x11/card/CardXWindow.hpp"

namespace quorvane {

// Main thread only. Exists only while a card takes presses, so that the server sends pointer events
// only then. Lockers grab the pointer, so our window receives no pointer events. The raw events
// still arrive, and their position is compared with the card's.
class CardPointer {
public:
    struct Listener {
        std::function<void(const PointerEvent&)> event;
        // Where to draw an arrow, in stage coordinates; nullopt to draw none.
        std::function<void(std::optional<Point>)> arrow;
    };

    // The child outlives it. The destructor cancels a press in progress.
    CardPointer(X11Session& x11, CardXWindow& child, const CardStyle& style, double scale,
                Listener listener);
    ~CardPointer();
    CardPointer(const CardPointer&) = delete;
    CardPointer& operator=(const CardPointer&) = delete;

    // Call when the card has moved and the pointer has not.
    void cardMoved();

private:
    Point locationOf(Point rootPoint) const;
    bool isOnCard(Point rootPoint) const;
    void handle(const RawPointerEvent& event);
    void observeCursor();
    void cursorChanged();
    void moved(Point rootPoint);
    void report(const std::optional<PointerEvent>& event);
    bool lockerHidesPointer();

    X11Session& x11_;
    CardXWindow& child_;
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
