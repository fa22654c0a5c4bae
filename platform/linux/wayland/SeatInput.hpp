// The pointer and the touches of one seat. Its keyboard is never bound.
#pragma once

#include <functional>
#include <optional>

#include "platform/linux/wayland/WaylandHandles.hpp"
#include "platform/linux/wayland/WaylandSession.hpp"

namespace quorvane {

// Reports their events on a surface. The first of several fingers counts, as the primary button.
class SeatInput {
public:
    using Report = std::function<void(wl_surface*, const SurfacePress&)>;

    SeatInput(Wayland<wl_seat> seat, std::uint32_t name, Report report);
    SeatInput(const SeatInput&) = delete;
    SeatInput& operator=(const SeatInput&) = delete;

    std::uint32_t name() const { return name_; }

private:
    static const wl_seat_listener kListener;
    static const wl_pointer_listener kPointerListener;
    static const wl_touch_listener kTouchListener;

    void has(std::uint32_t capabilities);
    void moveTo(wl_fixed_t x, wl_fixed_t y);
    void report(wl_surface* surface, PointerEvent::Kind kind, unsigned button = 0) const;

    Wayland<wl_seat> seat_;
    Wayland<wl_pointer> pointer_;
    Wayland<wl_touch> touch_;
    std::uint32_t name_;
    Report report_;
    wl_surface* under_ = nullptr;    // the pointer
    wl_surface* touched_ = nullptr;  // by the finger that counts
    std::optional<std::int32_t> finger_;
    Point location_;
};

}  // namespace quorvane
