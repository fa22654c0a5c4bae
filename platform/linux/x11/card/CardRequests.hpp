// Helpers for requests to the X server.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>

#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// Null where the server lacks the extension.
inline const xcb_query_extension_reply_t* presentExtension(xcb_connection_t* connection,
                                                           xcb_extension_t& extension) {
    const auto* found = xcb_get_extension_data(connection, &extension);
    return found && found->present ? found : nullptr;
}

// In the protocol's integer types.
inline xcb_rectangle_t boxOf(const PixelRect& rect) {
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

}  // namespace quorvane
