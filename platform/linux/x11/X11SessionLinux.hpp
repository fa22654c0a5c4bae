// The Linux X11 session: one connection, with the monitors, lockers and pointer read from it.
#pragma once

#include <memory>

#include "lockers/LockScreenDetector.hpp"
#include "platform/linux/x11/LockerWindows.hpp"
#include "platform/linux/x11/MonitorsLinux.hpp"
#include "platform/linux/x11/RawPointer.hpp"
#include "platform/linux/x11/ToolkitSettings.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// Main thread only. It lives as long as the platform's tables.
class X11SessionLinux : public X11Session {
public:
    // `onLost` is called once when the server goes away; the session then keeps its last state.
    static Result<std::unique_ptr<X11SessionLinux>> open(EventLoop& loop,
                                                         const std::string& display,
                                                         std::function<void()> onLost);

    xcb_connection_t* connection() override { return x11_->connection(); }
    const xcb_screen_t& screen() override { return x11_->screen(); }
    Handle observeWindow(xcb_window_t window, EventHandler handler) override {
        return x11_->observeWindow(window, std::move(handler));
    }
    Handle observeEvents(std::uint8_t type, EventHandler handler) override {
        return x11_->observeEvents(type, std::move(handler));
    }
    Handle observePointer(std::function<void(const RawPointerEvent&)> handler) override {
        return pointer_.observe(std::move(handler));
    }
    Handle observePointerMoves(std::function<void(Point)> handler) override {
        return pointer_.observeMoves(std::move(handler));
    }
    std::vector<FoundLocker> lockerWindows() override { return lockers_.windows(); }
    Rect pixels(const Rect& points) override { return monitors_.layout().pixels(points); }
    void flush() override { xcb_flush(connection()); }

    // The results refer to the session.
    Screens screens();
    LockScreenDetector detector();
    std::optional<std::int32_t> toolkitSetting(std::string_view name) {
        return quorvane::toolkitSetting(*x11_, name);
    }

private:
    X11SessionLinux(std::unique_ptr<X11Connection> x11, const Clock& clock);

    std::unique_ptr<X11Connection> x11_;  // the others refer to it
    MonitorsLinux monitors_;
    LockerWindows lockers_;
    RawPointer pointer_;
};

}  // namespace quorvane
