// The connection to the X server that the lock watcher, the screens and the card windows share. An
// interface, because the card module is loaded later and cannot link the program's functions.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "drawing/CardWindows.hpp"
#include "drawing/Geometry.hpp"
#include "lockers/LockerRules.hpp"
#include "platform/Handle.hpp"

namespace quorvane {

// A raw pointer event, delivered even while a locker has grabbed the pointer. Root coordinates in
// pixels.
struct RawPointerEvent {
    PointerEvent::Kind kind;
    unsigned button = 0;  // for down and up: 1 is the primary button
    Point position;
};

// Main thread only. Handlers run from the main loop; dropping the handle ends the observation.
class X11Session {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    virtual ~X11Session() = default;
    virtual xcb_connection_t* connection() = 0;
    virtual const xcb_screen_t& screen() = 0;
    // Every core event that is reported on this window. The caller sets the window's event mask.
    virtual Handle observeWindow(xcb_window_t window, EventHandler handler) = 0;
    // Every event of one type: an extension's first event plus the event's number in it.
    virtual Handle observeEvents(std::uint8_t type, EventHandler handler) = 0;
    // Primary and other buttons; `dragged` while any button is down. Selected on the server only
    // while there is an observer. Keyboard events are never selected.
    virtual Handle observePointer(std::function<void(const RawPointerEvent&)> handler) = 0;
    // Every movement of the pointer, also with no button down. Each one wakes the process, so hold
    // the handle only while a card takes presses.
    virtual Handle observePointerMoves(std::function<void(Point)> handler) = 0;
    // The current full-screen windows of lockers, topmost first.
    virtual std::vector<FoundLocker> lockerWindows() = 0;
    // A rectangle of global points in whole root pixels.
    virtual Rect pixels(const Rect& points) = 0;
    // Sends buffered requests.
    virtual void flush() = 0;
};

}  // namespace quorvane
