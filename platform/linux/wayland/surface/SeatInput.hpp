// The pointer and the touches of one seat. Its keyboard is never bound.
#pragma once

#include <functional>
#include <optional>

#include "platform/linux/wayland/messages/SurfaceMessages.hpp"
#include "platform/linux/wayland/surface/WaylandHandles.hpp"

namespace quorvane {

// Reports presses and, while one lasts, movements. The first of several fingers counts.
class SeatInput {
public:
    // `report` receives messages without the surface's number.
    using Report = std::function<void(wl_surface*, FromSurface)>;

    SeatInput(Wayland<wl_seat> seat, std::uint32_t name, Report report);
    SeatInput(const SeatInput&) = delete;
    SeatInput& operator=(const SeatInput&) = delete;

    std::uint32_t name() const { return name_; }

private:
    static const wl_seat_listener kListener;
    static const wl_pointer_listener kPointerListener;
    static const wl_touch_listener kTouchListener;

    void has(std::uint32_t capabilities);
    void pressed(wl_surface* surface, std::uint32_t button);
    void moved(wl_surface* surface, wl_fixed_t x, wl_fixed_t y);
    void lifted(wl_surface* surface, std::uint32_t button);
    void cancelled();
    void send(wl_surface* surface, FromSurface::Kind kind, std::uint32_t button = 0);

    Wayland<wl_seat> seat_;
    Wayland<wl_pointer> pointer_;
    Wayland<wl_touch> touch_;
    std::uint32_t name_;
    Report report_;
    wl_surface* under_ = nullptr;    // the pointer
    wl_surface* touched_ = nullptr;  // by the finger that counts
    std::optional<std::int32_t> finger_;
    int pressedButtons_ = 0;
    Point location_;
};

}  // namespace quorvane
