// What a locker shows: the pixels behind a card. They are read once for each place and change,
// never in a rhythm.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/card/ServerMemory.hpp"
#include "platform/linux/x11/X11Session.hpp"

namespace quorvane {

// The place of our window, and what it leaves to the locker, in the window's coordinates.
struct LockerPlace {
    PixelRect area;
    std::vector<PixelRect> holes{};
};

// The pixels just outside the area, black in the holes: a locker shows there what it wants.
using EdgePixels = std::vector<std::uint32_t>;

// Reads areas of one locker's window, in its coordinates. What lies outside it comes out black.
// Main thread only. Returns nullopt when the window has gone.
class LockerPicture {
public:
    LockerPicture(X11Session& x11, xcb_window_t locker) : x11_(x11), locker_(locker) {}

    // What is on the screen there now, windows inside the locker's included. The pixels may come
    // through `lent`, memory for as many pixels that is not in use yet.
    std::optional<Pixels> visible(const PixelRect& area, const ServerMemory* lent = nullptr);
    std::optional<EdgePixels> visibleEdge(const LockerPlace& place);
    // The locker's background, which the server keeps under every window inside, ours too. i3lock
    // shows all it draws that way. Other lockers paint over their background, and some change it
    // in steps: only where it is also visible is it the locker's picture.
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
    std::optional<bool> hasComposite_;
};

}  // namespace quorvane
