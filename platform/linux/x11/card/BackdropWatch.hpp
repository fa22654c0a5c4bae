// A watch over a locker's drawing around a card: reports each drawing, and when drawing has
// stopped.
#pragma once

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <functional>

#include "drawing/pictures/Pixels.hpp"
#include "platform/Clock.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// Main thread only. Driven by the server's damage events; nothing is polled while the locker is at
// rest. Without the Damage extension it never reports anything.
class BackdropWatch {
public:
    struct Listener {
        std::function<void()> drawn;   // at each drawing, only while `setImmediate` is on
        std::function<void()> rested;  // the locker has not drawn for a settle time
    };

    // `area` is the place of our window inside the locker's; drawing inside it is our own.
    BackdropWatch(X11Session& x11, Clock clock, xcb_window_t locker, const PixelRect& area,
                  Listener listener);
    ~BackdropWatch();
    BackdropWatch(const BackdropWatch&) = delete;
    BackdropWatch& operator=(const BackdropWatch&) = delete;

    bool isWatching() const { return damage_ != XCB_NONE; }
    void setImmediate(bool isImmediate) { isImmediate_ = isImmediate; }
    // Reports the next rest even if nothing is drawn before it.
    void awaitRest();

private:
    void noticed();
    void waitFor(Duration pause);
    void pauseEnded();
    bool takeDrawing();

    X11Session& x11_;
    Clock clock_;
    PixelRect area_;
    Listener listener_;
    bool isImmediate_ = false;
    xcb_damage_damage_t damage_ = XCB_NONE;
    xcb_xfixes_region_t region_ = XCB_NONE;
    Duration pause_{};
    bool hasDrawn_ = false;  // since the pause began
    Timer pauseEnd_;
    Handle events_;
};

}  // namespace quorvane
