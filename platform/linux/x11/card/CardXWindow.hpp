// Our window inside a locker's window: its place, its stacking order, its shape and its end.
#pragma once

#include <xcb/shape.h>
#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <vector>

#include "drawing/Screens.hpp"
#include "drawing/pictures/Pixels.hpp"
#include "platform/Log.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// Main thread only. It is above the lock because its parent is, so it is never raised. It grabs
// nothing and receives no key events. The server destroys it together with the locker's window;
// requests after that have no effect.
class CardXWindow {
public:
    struct Events {
        std::function<void()> destroyed;  // by another client or by the server
        std::function<void(const PixelRect& part)> exposed;
        std::function<void(bool isCovered)> covered;  // by the windows above it
    };

    // Returns null when no locker covers the place; the reason is logged.
    static std::unique_ptr<CardXWindow> make(X11Session& x11, const Logger& log, const Rect& frame,
                                             const Screen& screen, Events events);
    ~CardXWindow();
    CardXWindow(const CardXWindow&) = delete;
    CardXWindow& operator=(const CardXWindow&) = delete;

    xcb_window_t window() const { return window_; }
    std::uint8_t depth() const { return depth_; }
    const FoundLocker& locker() const { return locker_; }
    bool exists() const { return exists_; }
    bool isMapped() const { return isMapped_; }
    // In the locker's window coordinates.
    const PixelRect& place() const { return place_; }
    // Its top left, in root pixels.
    Point origin() const { return {locker_.frame.x + place_.x, locker_.frame.y + place_.y}; }
    // Whether a point of the root lies on it and no window above it covers the point.
    bool isOnTopAt(Point rootPoint);
    // The place in the locker's window of a frame in global points.
    PixelRect placeFor(const Rect& frame) const;

    // The window shows the locker's earlier pixels until something is drawn.
    void map();
    void unmap();
    void moveTo(const PixelRect& place);
    // Leaves these areas, in global points, out of the window.
    void cutOut(const std::vector<Rect>& areas);
    // Gives the window this shape, less the areas cut out; empty means the whole rectangle. Without
    // the Shape extension the window stays a rectangle.
    void setOutline(std::vector<PixelRect> parts);
    const std::vector<PixelRect>& outline() const { return outline_; }
    // In the window's coordinates; they may reach beyond it.
    const std::vector<PixelRect>& holes() const { return holes_; }
    void destroy();

private:
    CardXWindow(X11Session& x11, const FoundLocker& locker, Events events);
    bool create(const Rect& frame, const std::vector<Rect>& keepClear);
    void handle(const xcb_generic_event_t& event);
    void stackAboveCover();
    void applyShape();
    void shape(xcb_shape_so_t operation, const std::vector<PixelRect>& parts);

    X11Session& x11_;
    FoundLocker locker_;
    Events events_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    std::uint8_t depth_ = 0;
    PixelRect place_;
    std::vector<PixelRect> holes_;
    std::vector<PixelRect> outline_;
    bool exists_ = false;
    bool isMapped_ = false;
    Handle observation_;
};

}  // namespace quorvane
