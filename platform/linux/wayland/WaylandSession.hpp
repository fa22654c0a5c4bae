// The surfaces above a Wayland lock screen. An interface, because the drawing module is loaded
// later and uses the session through it.
#pragma once

#include <cstdint>
#include <functional>

#include "drawing/Screens.hpp"
#include "platform/linux/wayland/messages/SurfaceMessages.hpp"

namespace quorvane {

// Called from the main loop.
struct SurfaceEvents {
    std::function<void()> frame;
    std::function<void(std::uint32_t picture)> released;
    std::function<void(const FromSurface&)> pointer;
    std::function<void()> closed;  // the surface is gone
};

// Main thread only.
class WaylandSession {
public:
    virtual ~WaylandSession() = default;
    // Opens a surface with the request's place and picture size, whose pictures are in `memory`.
    // Returns its number; 0 when the screen is gone.
    virtual std::uint32_t open(const Screen& screen, ToSurface request, int memory,
                               SurfaceEvents events) = 0;
    // To a surface that is gone, messages have no effect.
    virtual void send(const ToSurface& message) = 0;
    virtual void close(std::uint32_t surface) = 0;
};

}  // namespace quorvane
