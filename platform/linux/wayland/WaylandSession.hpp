// The surfaces above a Wayland lock screen. Interfaces, because the card module is loaded later
// and uses the session through them.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "drawing/CardWindows.hpp"
#include "drawing/Screens.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// Each surface has this many pictures in its memory, one after the other.
inline constexpr std::uint32_t kPictures = 2;

struct SurfaceRequest {
    PixelRect place;  // on the output, logical pixels from its top left
    int width = 0;    // of a picture
    int height = 0;
    int memory = -1;  // the file with the pictures
};

struct SurfacePress {
    PointerEvent::Kind kind;
    unsigned button = 0;  // 1 is the primary one
    Point location;       // logical pixels of the surface
};

// Called from the main loop. A handler may destroy its surface.
struct SurfaceEvents {
    std::function<void()> frame;                          // it is time to draw the next picture
    std::function<void(std::uint32_t picture)> released;  // it is no longer read
    std::function<void(const SurfacePress&)> press;
    std::function<void()> closed;  // the surface is gone
};

// Main thread only. The destructor removes the surface.
class WaylandSurface {
public:
    virtual ~WaylandSurface() = default;
    // The parts that take the pointer, in logical pixels. Before the first call there are none.
    virtual void setInput(std::span<const PixelRect> parts) = 0;
    // These parts of the picture, in its pixels, differ from the one shown last.
    virtual void show(std::uint32_t picture, std::span<const PixelRect> parts) = 0;
};

// Main thread only.
class WaylandSession {
public:
    virtual ~WaylandSession() = default;
    // Null when the screen is gone. The surface may outlive what it shows, not the session.
    virtual std::unique_ptr<WaylandSurface> open(const Screen& screen,
                                                 const SurfaceRequest& request,
                                                 SurfaceEvents events) = 0;
    // The compositor's events may wait for the process's next wake-up, which is soon. Call while a
    // surface is open.
    virtual void postponeEvents() = 0;
};

}  // namespace quorvane
