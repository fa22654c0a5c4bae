// The pointer while somebody else holds it grabbed: raw button events and the place they happen at.
#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <set>

#include "platform/linux/Listeners.hpp"
#include "platform/linux/X11Connection.hpp"
#include "platform/linux/X11Session.hpp"

namespace quorvane {

// Main thread only. Nothing is selected on the server while nobody observes; moves only while a
// button is down or somebody observes moves. What is selected are the three raw events of the
// pointer and nothing else: the keys that are being typed are none of our business. Without
// XInput 2 on the server nothing is ever reported.
class RawPointer {
public:
    explicit RawPointer(X11Connection& x11);

    Handle observe(std::function<void(const RawPointerEvent&)> handler);
    Handle observeMoves(std::function<void(Point)> handler);

private:
    bool isSupported();
    void select();
    void handle(const xcb_generic_event_t& event);
    void handleButton(unsigned physicalButton, bool isDown);
    void reportMove();
    unsigned logicalButton(unsigned physicalButton);
    bool position(Point& point);

    X11Connection& x11_;
    int major_ = -1;  // the extension's number; 0 when the server lacks it, -1 before the first use
    std::uint32_t selected_ = 0;
    std::set<unsigned> buttonsDown_;
    bool hasMoved_ = false;
    Listeners<const RawPointerEvent&> listeners_;
    Listeners<Point> moveListeners_;
    Handle events_;
    Handle quiet_;
};

}  // namespace quorvane
