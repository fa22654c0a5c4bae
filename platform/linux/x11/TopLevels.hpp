// The top-level windows of the X server and what of them matters to finding lockers.
#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lockers/LockerRules.hpp"
#include "platform/linux/loop/Listeners.hpp"
#include "platform/linux/x11/WindowStack.hpp"
#include "platform/linux/x11/X11Connection.hpp"

namespace quorvane {

// Main thread only. Follows the root's children and those of the server's own windows above them,
// such as the composite overlay, into which some lockers put their window; and whether the keyboard
// is grabbed. It only listens: it grabs nothing, and changes nothing but its own event masks, those
// of the root and of foreign windows.
class TopLevels {
public:
    struct Details {
        bool isDrawable = false;
        std::string instance;
        std::string className;
    };

    // `changed` is called for each event that may matter, never inside a call to this object.
    TopLevels(X11Connection& x11, std::function<void()> changed);

    // Top one first; this connection's own windows are left out.
    std::vector<WindowStack::Entry> windows() const;
    KeyboardHold keyboard() const { return keyboard_; }

    // The same for all windows of one connection.
    std::uint32_t clientOf(xcb_window_t window) const { return x11_.clientOf(window); }
    // Asks the server once and remembers. Nothing when the window has gone.
    const Details* details(xcb_window_t window);
    // From now on changes of the window's children and of its class are changes too.
    void watchClosely(xcb_window_t window);
    // Those watched closely that were destroyed since this was last asked. A new window may have
    // the number of one of them already.
    std::set<xcb_window_t> takeDestroyed() { return std::exchange(destroyed_, {}); }
    // The windows inside a window that is watched closely: mapped, drawable, in the root's pixels.
    std::vector<Rect> mappedChildren(xcb_window_t parent, const Rect& frame);
    // The clients that manage the desktop: window manager and compositor.
    std::set<std::uint32_t> desktopClients();
    // The clients with a window that the window manager lists.
    std::set<std::uint32_t> managedClients();
    // Whether another client holds the pointer grabbed.
    bool pointerIsHeld();
    // What xscreensaver publishes. While it is followed its changes are changes too; otherwise the
    // root window's properties are left alone, to which status bars write every second.
    void followScreenSaver(bool follows);
    bool screenSaverIsLocked();

    // Windows that this process made over another connection.
    void noteOwn(xcb_window_t window, bool exists);

private:
    void handle(xcb_window_t window, const xcb_generic_event_t& event);
    bool handleStack(WindowStack& stack, const xcb_generic_event_t& event);
    bool handleFocus(const xcb_focus_in_event_t& event);
    bool handleProperty(const xcb_property_notify_event_t& event);
    bool concernsForeignChild(const xcb_generic_event_t& event) const;
    void forget(xcb_window_t window);
    void select(xcb_window_t window, std::uint32_t mask);
    void readChildren(WindowStack& stack);
    void findOverlay();
    void followOverlay(xcb_window_t overlay);
    WindowStack* stackOf(xcb_window_t parent);
    bool isForeign(xcb_window_t window) const;

    X11Connection& x11_;
    std::function<void()> changed_;
    WindowStack root_;
    std::vector<WindowStack> overlays_;  // of windows that the server itself made
    KeyboardHold keyboard_ = KeyboardHold::unknown;
    xcb_window_t probe_ = XCB_WINDOW_NONE;  // never mapped
    std::map<xcb_window_t, Details> details_;
    std::set<xcb_window_t> watchedClosely_;
    std::set<xcb_window_t> destroyed_;
    std::set<xcb_window_t> noted_;
    bool followsScreenSaver_ = false;
    Handle events_;
};

}  // namespace quorvane
