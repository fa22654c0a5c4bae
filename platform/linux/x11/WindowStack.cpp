#include "platform/linux/x11/WindowStack.hpp"

#include <algorithm>

namespace quorvane {

const WindowStack::Entry* WindowStack::find(xcb_window_t window) const {
    const auto place = std::ranges::find(entries_, window, &Entry::window);
    return place == entries_.end() ? nullptr : &*place;
}

WindowStack::Place WindowStack::placeOf(xcb_window_t window) {
    return std::ranges::find(entries_, window, &Entry::window);
}

void WindowStack::put(const Entry& entry) {
    const auto place = placeOf(entry.window);
    const bool wasShown = entry.isMapped || (place != entries_.end() && place->wasShown);
    Entry& known = place == entries_.end() ? entries_.emplace_back() : *place;
    known = entry;
    known.wasShown = wasShown;
}

bool WindowStack::apply(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_CREATE_NOTIFY: {
            const auto& created = reinterpret_cast<const xcb_create_notify_event_t&>(event);
            put({created.window, frameWithBorder(created), false, created.override_redirect != 0});
            return true;
        }
        case XCB_DESTROY_NOTIFY:
            return remove(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        case XCB_MAP_NOTIFY:
            return setMapped(reinterpret_cast<const xcb_map_notify_event_t&>(event).window, true);
        case XCB_UNMAP_NOTIFY:
            return setMapped(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window,
                             false);
        case XCB_CONFIGURE_NOTIFY:
            return configure(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
        case XCB_REPARENT_NOTIFY:
            return reparent(reinterpret_cast<const xcb_reparent_notify_event_t&>(event));
        case XCB_GRAVITY_NOTIFY: {
            const auto& moved = reinterpret_cast<const xcb_gravity_notify_event_t&>(event);
            const auto place = placeOf(moved.window);
            if (place == entries_.end()) return false;
            place->frame.x = moved.x;
            place->frame.y = moved.y;
            return true;
        }
        case XCB_CIRCULATE_NOTIFY:
            return circulate(reinterpret_cast<const xcb_circulate_notify_event_t&>(event));
        default: return false;
    }
}

bool WindowStack::remove(xcb_window_t window) {
    return std::erase_if(entries_, [&](const Entry& entry) { return entry.window == window; }) > 0;
}

bool WindowStack::setMapped(xcb_window_t window, bool isMapped) {
    const auto place = placeOf(window);
    if (place == entries_.end() || place->isMapped == isMapped) return false;
    place->isMapped = isMapped;
    place->wasShown |= isMapped;
    return true;
}

bool WindowStack::configure(const xcb_configure_notify_event_t& event) {
    const auto place = placeOf(event.window);
    if (place == entries_.end()) return false;
    Entry entry = *place;
    entry.frame = frameWithBorder(event);
    entry.isOverrideRedirect = event.override_redirect != 0;
    entries_.erase(place);
    if (event.above_sibling == XCB_WINDOW_NONE) {
        entries_.insert(entries_.begin(), entry);
        return true;
    }
    // An unknown sibling no longer exists, so the window goes on top as a guess.
    const auto sibling = placeOf(event.above_sibling);
    entries_.insert(sibling == entries_.end() ? sibling : sibling + 1, entry);
    return true;
}

bool WindowStack::reparent(const xcb_reparent_notify_event_t& event) {
    if (event.parent != parent_) return remove(event.window);
    remove(event.window);
    // Windows in a window manager's frame are shown. The event carries no size, so the caller
    // queries the rest.
    entries_.push_back({.window = event.window, .wasShown = true});
    return true;
}

bool WindowStack::circulate(const xcb_circulate_notify_event_t& event) {
    const auto place = placeOf(event.window);
    if (place == entries_.end()) return false;
    if (event.place == XCB_PLACE_ON_TOP)
        std::rotate(place, place + 1, entries_.end());
    else
        std::rotate(entries_.begin(), place, place + 1);
    return true;
}

}  // namespace quorvane
