// Helpers for requests to the X server.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>

#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// In the protocol's integer types.
inline xcb_rectangle_t boxOf(const PixelRect& rect) {
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

}  // namespace quorvane
