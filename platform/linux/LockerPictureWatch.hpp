// Tells when a locker has drawn around a card, so that its glass can follow what lies behind.
#pragma once

#include <xcb/damage.h>
#include <xcb/xfixes.h>

#include <functional>

#include "platform/Clock.hpp"
#include "platform/linux/Pixels.hpp"
#include "platform/linux/X11Session.hpp"

namespace quorvane {

// Main thread only. The server reports drawing by itself; without the Damage extension nothing is
// ever reported. A locker that draws without pause is heard of twice a second.
class LockerPictureWatch {
public:
    // `area` is where our window stands inside the locker's: what is drawn there is our own.
    LockerPictureWatch(X11Session& x11, Clock clock, xcb_window_t locker, const PixelRect& area,
                       std::function<void()> changed);
    ~LockerPictureWatch();
    LockerPictureWatch(const LockerPictureWatch&) = delete;
    LockerPictureWatch& operator=(const LockerPictureWatch&) = delete;

private:
    bool begin(xcb_window_t locker);
    void noticed();
    void look();
    bool lockerHasDrawn();

    X11Session& x11_;
    Clock clock_;
    PixelRect area_;
    std::function<void()> changed_;
    xcb_damage_damage_t damage_ = XCB_NONE;
    xcb_xfixes_region_t region_ = XCB_NONE;
    Instant lastLook_{};
    Timer nextLook_;
    Handle events_;
};

}  // namespace quorvane
