// The pointer while another client holds it grabbed: raw events of buttons and of a touch screen,
// and the place they happen at.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <set>

#include "platform/linux/loop/Listeners.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// Main thread only. Nothing is selected on the server without a listener; moves only while a button
// or finger is down or a listener wants moves. Only raw events of pointers and touch screens are
// selected, never those of the keys that are being typed. The first finger on a touch screen is
// reported as the primary button, the others are ignored. Without XInput 2 on the server nothing is
// ever reported.
class RawPointer {
public:
    explicit RawPointer(X11Connection& x11);

    Handle observe(std::function<void(const RawPointerEvent&)> handler);
    Handle observeMoves(std::function<void(Point)> handler);

private:
    bool isSupported();
    void select();
    void handle(const xcb_generic_event_t& event);
    void press(unsigned button, bool isDown);
    void beginTouch(std::uint32_t touch, std::uint16_t device);
    bool isTouchScreen(std::uint16_t device);
    void reportMove();
    unsigned logicalButton(unsigned physicalButton);
    bool position(Point& point);

    X11Connection& x11_;
    int major_ = -1;  // the extension's number; 0 when the server lacks it, -1 before the first use
    std::uint32_t selected_ = 0;
    std::set<unsigned> buttonsDown_;
    std::optional<std::uint32_t> touch_;  // the first finger's
    bool hasMoved_ = false;
    Listeners<const RawPointerEvent&> listeners_;
    Listeners<Point> moveListeners_;
    Handle events_;
    Handle quiet_;
};

}  // namespace quorvane
