// The connection to the X server on the main loop, with event dispatch to observers.
#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/Handle.hpp"
#include "platform/Listeners.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/loop/EventLoop.hpp"

namespace quorvane {

// Main thread only. Request errors are not reported, because nearly all concern windows that no
// longer exist. When the server goes away, `onLost` is called once; later requests have no effect
// and later replies are null.
class X11Connection {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    // `display` "" means the display named by the environment. An error carries a readable message.
    static Result<std::unique_ptr<X11Connection>> open(EventLoop& loop, const std::string& display,
                                                       std::function<void()> onLost);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* connection() const { return connection_; }
    const xcb_screen_t& screen() const { return *screen_; }
    xcb_window_t root() const { return screen_->root; }
    // The number in the screen's selections, such as "_NET_WM_CM_S0".
    int screenNumber() const { return screenNumber_; }
    xcb_atom_t atom(const char* name);
    // The same number for all windows that one connection created; 0 for the server itself.
    std::uint32_t clientOf(xcb_window_t window) const;
    // Whether this connection created the window.
    bool isOwn(xcb_window_t window) const;

    Handle observeWindow(xcb_window_t window, EventHandler handler);
    // Events of all windows, each with the window it is reported on.
    Handle observeWindows(std::function<void(xcb_window_t, const xcb_generic_event_t&)> handler) {
        return windowListeners_.add(std::move(handler));
    }
    Handle observeEvents(std::uint8_t type, EventHandler handler);
    // Called after all received events are handled and before the loop sleeps. Use it to coalesce
    // many events into one reaction.
    Handle observeQuiet(std::function<void()> handler) {
        return quietListeners_.add(std::move(handler));
    }

private:
    X11Connection(EventLoop& loop, xcb_connection_t* connection, int screenNumber,
                  std::function<void()> onLost);
    void readEvents();
    void handleQueued();
    bool dispatchOne(xcb_generic_event_t* polled);
    void dispatch(const xcb_generic_event_t& event);
    void checkConnection();

    xcb_connection_t* connection_;
    int screenNumber_;
    const xcb_screen_t* screen_ = nullptr;
    std::unordered_map<std::string, xcb_atom_t> atoms_;
    Listeners<xcb_window_t, const xcb_generic_event_t&> windowListeners_;
    Listeners<const xcb_generic_event_t&> typeListeners_;
    Listeners<> quietListeners_;
    std::function<void()> onLost_;
    Handle watch_;
    Handle beforeSleep_;
};

}  // namespace quorvane
