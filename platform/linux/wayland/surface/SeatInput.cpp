#include "platform/linux/wayland/surface/SeatInput.hpp"

#include <linux/input-event-codes.h>

#include <utility>

namespace quorvane {
namespace {

constexpr std::uint32_t kPrimary = 1;

// Buttons are counted from the left one.
std::uint32_t numberOf(std::uint32_t button) { return button - BTN_LEFT + kPrimary; }

SeatInput& seatOf(void* data) { return *static_cast<SeatInput*>(data); }

}  // namespace

const wl_seat_listener SeatInput::kListener{
    .capabilities = [](void* data, wl_seat*,
                       std::uint32_t capabilities) { seatOf(data).has(capabilities); },
    .name = [](void*, wl_seat*, const char*) {},
};

// The compositor keeps a pressed pointer on its surface, wherever it moves.
const wl_pointer_listener SeatInput::kPointerListener{
    .enter =
        [](void* data, wl_pointer*, std::uint32_t, wl_surface* surface, wl_fixed_t x,
           wl_fixed_t y) {
            seatOf(data).under_ = surface;
            seatOf(data).moved(nullptr, x, y);
        },
    .leave =
        [](void* data, wl_pointer*, std::uint32_t, wl_surface*) {
            if (std::exchange(seatOf(data).pressedButtons_, 0) > 0) seatOf(data).cancelled();
            seatOf(data).under_ = nullptr;
        },
    .motion =
        [](void* data, wl_pointer*, std::uint32_t, wl_fixed_t x, wl_fixed_t y) {
            seatOf(data).moved(seatOf(data).pressedButtons_ > 0 ? seatOf(data).under_ : nullptr, x,
                               y);
        },
    .button =
        [](void* data, wl_pointer*, std::uint32_t, std::uint32_t, std::uint32_t button,
           std::uint32_t state) {
            const bool isDown = state == WL_POINTER_BUTTON_STATE_PRESSED;
            seatOf(data).pressedButtons_ += isDown ? 1 : -1;
            if (isDown)
                seatOf(data).pressed(seatOf(data).under_, numberOf(button));
            else
                seatOf(data).lifted(seatOf(data).under_, numberOf(button));
        },
    .axis = [](void*, wl_pointer*, std::uint32_t, std::uint32_t, wl_fixed_t) {},
    .frame = nullptr,
    .axis_source = nullptr,
    .axis_stop = nullptr,
    .axis_discrete = nullptr,
    .axis_value120 = nullptr,
};

const wl_touch_listener SeatInput::kTouchListener{
    .down =
        [](void* data, wl_touch*, std::uint32_t, std::uint32_t, wl_surface* surface,
           std::int32_t finger, wl_fixed_t x, wl_fixed_t y) {
            if (seatOf(data).finger_) return;
            seatOf(data).finger_ = finger;
            seatOf(data).touched_ = surface;
            seatOf(data).moved(nullptr, x, y);
            seatOf(data).pressed(surface, kPrimary);
        },
    .up =
        [](void* data, wl_touch*, std::uint32_t, std::uint32_t, std::int32_t finger) {
            if (seatOf(data).finger_ != finger) return;
            seatOf(data).finger_.reset();
            seatOf(data).lifted(std::exchange(seatOf(data).touched_, nullptr), kPrimary);
        },
    .motion =
        [](void* data, wl_touch*, std::uint32_t, std::int32_t finger, wl_fixed_t x, wl_fixed_t y) {
            if (seatOf(data).finger_ == finger) seatOf(data).moved(seatOf(data).touched_, x, y);
        },
    .frame = [](void*, wl_touch*) {},
    .cancel =
        [](void* data, wl_touch*) {
            if (std::exchange(seatOf(data).finger_, std::nullopt)) seatOf(data).cancelled();
            seatOf(data).touched_ = nullptr;
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

void SeatInput::pressed(wl_surface* surface, std::uint32_t button) {
    send(surface, FromSurface::Kind::pressed, button);
}

// Reports nothing for a null surface.
void SeatInput::moved(wl_surface* surface, wl_fixed_t x, wl_fixed_t y) {
    location_ = {wl_fixed_to_double(x), wl_fixed_to_double(y)};
    send(surface, FromSurface::Kind::moved);
}

void SeatInput::lifted(wl_surface* surface, std::uint32_t button) {
    send(surface, FromSurface::Kind::lifted, button);
}

void SeatInput::cancelled() { send(touched_ ? touched_ : under_, FromSurface::Kind::cancelled); }

void SeatInput::send(wl_surface* surface, FromSurface::Kind kind, std::uint32_t button) {
    if (surface) report_(surface, {.kind = kind, .button = button, .location = location_});
}

}  // namespace quorvane
