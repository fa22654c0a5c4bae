// The top-level windows of the X server, with the details needed to find lockers.
#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lockers/LockerRules.hpp"
#include "platform/Listeners.hpp"
#include "platform/linux/x11/WindowStack.hpp"
#include "platform/linux/x11/X11Connection.hpp"

namespace quorvane {

// Main thread only. Follows the root's children, and the children of the server's own windows such
// as the composite overlay, because some lockers put their window there. Also follows whether the
// keyboard is grabbed. It only listens: it grabs nothing, and changes only its own event masks on
// the root and on foreign windows.
class TopLevelWindows {
public:
    struct Details {
        bool isDrawable = false;
        std::string instance;
        std::string className;
    };

    // `changed` is called for each event that may matter, never inside a call to this object.
    TopLevelWindows(X11Connection& x11, std::function<void()> changed);

    // Topmost first, without this connection's own windows.
    std::vector<WindowStack::Entry> windows() const;
    KeyboardHold keyboard() const { return keyboard_; }

    // The same number for all windows of one connection.
    std::uint32_t clientOf(xcb_window_t window) const { return x11_.clientOf(window); }
    // Asks the server once and caches the answer. Null when the window is gone.
    const Details* details(xcb_window_t window);
    // From now on also reports changes of the window's children and of its class.
    void watchClosely(xcb_window_t window);
    // The closely watched windows that were destroyed since the last call. A new window may already
    // reuse one of their IDs.
    std::set<xcb_window_t> takeDestroyed() { return std::exchange(destroyed_, {}); }
    // The mapped, drawable windows inside a closely watched window, in root pixels.
    std::vector<Rect> mappedChildren(xcb_window_t parent, const Rect& frame);
    // The clients that manage the desktop: window manager and compositor.
    std::set<std::uint32_t> desktopClients();
    // The clients with a window that the window manager lists.
    std::set<std::uint32_t> managedClients();
    // Whether another client has grabbed the pointer.
    bool pointerIsHeld();
    // The state that xscreensaver publishes. While followed, its changes are reported too.
    // Otherwise the root window's property events are not selected, because status bars write
    // properties every second.
    void followScreenSaver(bool follows);
    bool screenSaverIsLocked();

private:
    void handle(xcb_window_t window, const xcb_generic_event_t& event);
    bool handleStack(WindowStack& stack, const xcb_generic_event_t& event);
    bool handleFocus(const xcb_focus_in_event_t& event);
    bool handleProperty(const xcb_property_notify_event_t& event);
    bool concernsForeignChild(const xcb_generic_event_t& event) const;
    void forget(xcb_window_t window);
    void select(xcb_window_t window, std::uint32_t mask);
    void readChildren(WindowStack& stack);
    // The numbers of a property of the root, such as windows or atoms; empty when it is missing or
    // of another type.
    std::vector<std::uint32_t> rootNumbers(const char* property, xcb_atom_t type) const;
    void findOverlay();
    void followOverlay(xcb_window_t overlay);
    WindowStack* stackOf(xcb_window_t parent);
    bool isForeign(xcb_window_t window) const;

    X11Connection& x11_;
    std::function<void()> changed_;
    WindowStack root_;
    std::vector<WindowStack> overlays_;  // of windows created by the server itself
    KeyboardHold keyboard_ = KeyboardHold::unknown;
    xcb_window_t probe_ = XCB_WINDOW_NONE;  // never mapped
    std::map<xcb_window_t, Details> details_;
    std::set<xcb_window_t> watchedClosely_;
    std::set<xcb_window_t> destroyed_;
    bool followsScreenSaver_ = false;
    Handle events_;
};

}  // namespace quorvane
