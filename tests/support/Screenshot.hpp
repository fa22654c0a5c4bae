// What an X screen shows, seen by another client than the one under test.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace quorvane {

struct Screenshot {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;  // 0xffRRGGBB, row by row

    // The area of the root window; empty when it cannot be read.
    static Screenshot take(xcb_connection_t* connection, int x, int y, int width, int height) {
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
        const auto cookie =
            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height), ~0U);
        xcb_get_image_reply_t* reply = xcb_get_image_reply(connection, cookie, nullptr);
        if (!reply) return {};
        Screenshot result{width, height, {}};
        result.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        std::memcpy(result.pixels.data(), xcb_get_image_data(reply), result.pixels.size() * 4);
        for (std::uint32_t& pixel : result.pixels) pixel |= 0xff000000;
        std::free(reply);
        return result;
    }

    static Screenshot take(xcb_connection_t* connection) {
        const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
        return take(connection, 0, 0, screen->width_in_pixels, screen->height_in_pixels);
    }

    std::uint32_t at(int x, int y) const {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }

    bool operator==(const Screenshot&) const = default;
};

}  // namespace quorvane
