#include "platform/linux/wayland/SeatInput.hpp"

#include <linux/input-event-codes.h>

#include <utility>

namespace quorvane {
namespace {

using Kind = PointerEvent::Kind;

constexpr unsigned kPrimary = 1;

SeatInput& seatOf(void* data) { return *static_cast<SeatInput*>(data); }

}  // namespace

const wl_seat_listener SeatInput::kListener{
    .capabilities = [](void* data, wl_seat*,
                       std::uint32_t capabilities) { seatOf(data).has(capabilities); },
    .name = [](void*, wl_seat*, const char*) {},
};

// The compositor keeps a pressed pointer on its surface, wherever it moves. Newer libraries have
// more events than are named here.
const wl_pointer_listener SeatInput::kPointerListener = [] {
    wl_pointer_listener listener{};
    listener.enter = [](void* data, wl_pointer*, std::uint32_t, wl_surface* surface, wl_fixed_t x,
                        wl_fixed_t y) {
        seatOf(data).under_ = surface;
        seatOf(data).moveTo(x, y);
    };
    listener.leave = [](void* data, wl_pointer*, std::uint32_t, wl_surface*) {
        SeatInput& seat = seatOf(data);
        seat.report(std::exchange(seat.under_, nullptr), Kind::cancelled);
    };
    listener.motion = [](void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
        SeatInput& seat = seatOf(data);
        seat.moveTo(x, y);
        seat.report(seat.under_, Kind::dragged);
    };
    listener.button = [](void* data, wl_pointer*, std::uint32_t, std::uint32_t,
                         std::uint32_t button, std::uint32_t state) {
        const bool isDown = state == WL_POINTER_BUTTON_STATE_PRESSED;
        seatOf(data).report(seatOf(data).under_, isDown ? Kind::down : Kind::up,
                            button - BTN_LEFT + kPrimary);
    };
    listener.axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {};
    return listener;
}();

const wl_touch_listener SeatInput::kTouchListener{
    .down =
        [](void* data, wl_touch*, std::uint32_t, std::uint32_t, wl_surface* surface,
           std::int32_t finger, wl_fixed_t x, wl_fixed_t y) {
            SeatInput& seat = seatOf(data);
            if (seat.finger_) return;
            seat.finger_ = finger;
            seat.touched_ = surface;
            seat.moveTo(x, y);
            seat.report(surface, Kind::down, kPrimary);
        },
    .up =
        [](void* data, wl_touch*, std::uint32_t, std::uint32_t, std::int32_t finger) {
            SeatInput& seat = seatOf(data);
            if (seat.finger_ != finger) return;
            seat.finger_.reset();
            seat.report(seat.touched_, Kind::up, kPrimary);
        },
    .motion =
        [](void* data, wl_touch*, std::uint32_t, std::int32_t finger, wl_fixed_t x, wl_fixed_t y) {
            SeatInput& seat = seatOf(data);
            if (seat.finger_ != finger) return;
            seat.moveTo(x, y);
            seat.report(seat.touched_, Kind::dragged);
        },
    .frame = [](void*, wl_touch*) {},
    .cancel =
        [](void* data, wl_touch*) {
            SeatInput& seat = seatOf(data);
            if (std::exchange(seat.finger_, std::nullopt))
                seat.report(seat.touched_, Kind::cancelled);
        },
    .shape = nullptr,
    .orientation = nullptr,
};

SeatInput::SeatInput(Wayland<wl_seat> seat, std::uint32_t name, Report report)
    : seat_(std::move(seat)), name_(name), report_(std::move(report)) {
    wl_seat_add_listener(seat_.get(), &kListener, this);
}

void SeatInput::has(std::uint32_t capabilities) {
    const bool hasPointer = capabilities & WL_SEAT_CAPABILITY_POINTER;
    const bool hasTouch = capabilities & WL_SEAT_CAPABILITY_TOUCH;
    if (!hasPointer) pointer_.reset();
    if (!hasTouch) touch_.reset();
    if (hasPointer && !pointer_) {
        pointer_.reset(wl_seat_get_pointer(seat_.get()));
        wl_pointer_add_listener(pointer_.get(), &kPointerListener, this);
    }
    if (hasTouch && !touch_) {
        touch_.reset(wl_seat_get_touch(seat_.get()));
        wl_touch_add_listener(touch_.get(), &kTouchListener, this);
    }
}

void SeatInput::moveTo(wl_fixed_t x, wl_fixed_t y) {
    location_ = {wl_fixed_to_double(x), wl_fixed_to_double(y)};
}

void SeatInput::report(wl_surface* surface, Kind kind, unsigned button) const {
    if (surface) report_(surface, {kind, button, location_});
}

}  // namespace quorvane
