// The contents of an X screen, read by a client other than the one under test.
#pragma once

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {

// The area of the root window; empty when it cannot be read.
inline Pixels screenshot(xcb_connection_t* connection, const Rect& area) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const auto reply =
        xcbReply(xcb_get_image_reply, connection,
                 xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, std::int16_t(area.x),
                               std::int16_t(area.y), std::uint16_t(area.width),
                               std::uint16_t(area.height), ~0U));
    if (!reply) return {};
    Pixels result{int(area.width), int(area.height),
                  reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()))};
    for (std::uint32_t& pixel : result.values) pixel |= kOpaqueBlack;
    return result;
}

}  // namespace quorvane
