// The contents of an X screen, read by a client other than the one under test.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "drawing/Geometry.hpp"
#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {

struct Screenshot {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;  // 0xffRRGGBB, row by row

    // The area of the root window; empty when it cannot be read.
    static Screenshot take(xcb_connection_t* connection, const Rect& area) {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        const auto reply =
            xcbReply(xcb_get_image_reply, connection,
                     xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root,
                                   std::int16_t(area.x), std::int16_t(area.y),
                                   std::uint16_t(area.width), std::uint16_t(area.height), ~0U));
        if (!reply) return {};
        Screenshot result{int(area.width), int(area.height), {}};
        result.pixels.resize(std::size_t(area.width * area.height));
        std::memcpy(result.pixels.data(), xcb_get_image_data(reply.get()),
                    result.pixels.size() * 4);
        for (std::uint32_t& pixel : result.pixels) pixel |= 0xff000000;
        return result;
    }

    std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
    bool operator==(const Screenshot&) const = default;
};

}  // namespace quorvane
