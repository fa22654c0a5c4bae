// What a locker shows: the pixels behind a card. They are read once for each place and change,
// never in a rhythm.
#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "platform/linux/Pixels.hpp"
#include "platform/linux/ServerMemory.hpp"
#include "platform/linux/X11Session.hpp"

namespace quorvane {

// Reads areas of one locker's window, in its coordinates. What lies outside it comes out black.
// Main thread only. Nothing when the window has gone.
class LockerPicture {
public:
    LockerPicture(X11Session& x11, const LockerWindow& locker) : x11_(x11), locker_(locker) {}

    // What can be seen there now, windows inside the locker's included. It may come by way of
    // `lent`, memory for so many pixels that is in nobody's use yet.
    std::optional<Pixels> visible(const PixelRect& area, const ServerMemory* lent = nullptr);
    // The locker's background, as it stands under every window inside, ours too. A locker such as
    // i3lock shows all it draws that way; another one paints over its background, and this is
    // then not what one sees.
    std::optional<Pixels> background(const PixelRect& area);

private:
    std::optional<Pixels> read(xcb_drawable_t drawable, const PixelRect& area,
                               const ServerMemory* lent);
    std::optional<Pixels> readThroughConnection(xcb_drawable_t drawable, const PixelRect& area);
    bool hasComposite();

    X11Session& x11_;
    LockerWindow locker_;
    std::optional<bool> hasComposite_;
};

}  // namespace quorvane
