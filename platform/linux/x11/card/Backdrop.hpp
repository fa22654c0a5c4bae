// A reader of the pixels that a locker shows behind a card. They are read once for each place and
// change, never at an interval.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/x11/X11Session.hpp"
#include "platform/linux/x11/card/ServerMemory.hpp"

namespace quorvane {

// The place of our window, and the holes it leaves for the locker, in the window's coordinates.
struct LockerPlace {
    PixelRect area;
    std::vector<PixelRect> holes{};
};

// The pixels just outside the area; black in the holes, because a locker may draw anything there.
using EdgePixels = std::vector<std::uint32_t>;

// Reads areas of one locker's window, in its coordinates. Pixels outside it are black. Main thread
// only. Returns nullopt when the window is gone.
class Backdrop {
public:
    Backdrop(X11Session& x11, xcb_window_t locker) : x11_(x11), locker_(locker) {}

    // The pixels on the screen there now, including windows inside the locker's. `lent` is unused
    // memory of that size, which the read may use.
    std::optional<Pixels> visible(const PixelRect& area, const ServerMemory* lent = nullptr);
    std::optional<EdgePixels> visibleEdge(const LockerPlace& place);
    // The locker's background, which the server keeps under every window inside, including ours.
    // i3lock draws everything into its background. Other lockers paint over theirs, and some change
    // it in steps, so the background is the locker's picture only where it is also visible.
    struct Background {
        Pixels picture;
        EdgePixels edge;
    };
    std::optional<Background> background(const LockerPlace& place);

private:
    std::optional<PixelRect> readable();
    std::optional<Pixels> visible(const PixelRect& area, const PixelRect& bounds,
                                  const ServerMemory* lent);
    std::optional<Pixels> read(xcb_drawable_t drawable, const PixelRect& area,
                               const ServerMemory* lent);
    std::optional<Pixels> readBackground(const PixelRect& area);
    std::optional<Pixels> readThroughConnection(xcb_drawable_t drawable, const PixelRect& area);
    bool hasComposite();

    X11Session& x11_;
    xcb_window_t locker_;
};

}  // namespace quorvane
