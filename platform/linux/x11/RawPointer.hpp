// The pointer while another client has grabbed it: raw events of buttons and of a touch screen,
// with their positions.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>

#include "platform/Listeners.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// Main thread only. Selects no events without a listener, and moves only while a button or finger
// is down or a listener wants moves. Selects only raw events of pointers and touch screens, never
// of keys. Reports the first finger on a touch screen as the primary button and ignores other
// fingers. Without XInput 2.2 on the server it never reports anything.
class RawPointer {
public:
    explicit RawPointer(X11Connection& x11);

    Handle observe(std::function<void(const RawPointerEvent&)> handler) {
        return listeners_.add(std::move(handler));
    }
    Handle observeMoves(std::function<void(Point)> handler) {
        return moveListeners_.add(std::move(handler));
    }

private:
    bool isSupported();
    void select();
    void handle(const xcb_generic_event_t& event);
    void press(unsigned button, bool isDown);
    void beginTouch(std::uint32_t touch, std::uint16_t device);
    bool isTouchScreen(std::uint16_t device);
    void reportMove();
    unsigned logicalButton(unsigned physicalButton);

    X11Connection& x11_;
    int major_ = -1;  // extension opcode; 0: not supported, -1: not queried yet
    std::uint32_t selected_ = 0;
    std::set<unsigned> buttonsDown_;
    std::optional<std::uint32_t> touch_;  // ID of the first finger
    bool hasMoved_ = false;
    Listeners<const RawPointerEvent&> listeners_;
    Listeners<Point> moveListeners_;
    Handle events_;
    Handle quiet_;
};

}  // namespace quorvane
