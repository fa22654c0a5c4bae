// The children of one window in stacking order, updated from its substructure events so that no new
// query is needed after each event.
#pragma once

#include <xcb/xcb.h>

#include <span>
#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

// The frame in the parent's pixels, borders included, that an event or a reply carries.
template <typename T>
Rect frameWithBorder(const T& message) {
    const double border = 2.0 * message.border_width;
    return {static_cast<double>(message.x), static_cast<double>(message.y), message.width + border,
            message.height + border};
}

class WindowStack {
public:
    struct Entry {
        xcb_window_t window = XCB_WINDOW_NONE;
        Rect frame{};  // in the parent's pixels, borders included
        bool isMapped = false;
        bool isOverrideRedirect = false;
        bool wasShown = false;  // mapped at some time, or once in another parent
    };

    explicit WindowStack(xcb_window_t parent = XCB_WINDOW_NONE) : parent_(parent) {}

    xcb_window_t parent() const { return parent_; }
    // Bottom-most first.
    std::span<const Entry> entries() const { return entries_; }
    const Entry* find(xcb_window_t window) const;

    // Adds the window on top, or replaces its entry.
    void put(const Entry& entry);
    // Applies an event that was reported on the parent. Returns whether it changed anything.
    bool apply(const xcb_generic_event_t& event);

private:
    using Place = std::vector<Entry>::iterator;

    Place placeOf(xcb_window_t window);
    bool remove(xcb_window_t window);
    bool setMapped(xcb_window_t window, bool isMapped);
    bool configure(const xcb_configure_notify_event_t& event);
    bool reparent(const xcb_reparent_notify_event_t& event);
    bool circulate(const xcb_circulate_notify_event_t& event);

    xcb_window_t parent_;
    std::vector<Entry> entries_;
};

}  // namespace quorvane
