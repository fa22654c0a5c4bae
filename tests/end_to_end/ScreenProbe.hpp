// A hand and an eye on a test's X server: clicks, and what stands on the screen.
#pragma once

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

class ScreenProbe {
public:
    explicit ScreenProbe(const std::string& display)
        : connection_(xcb_connect(display.c_str(), nullptr)),
          root_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root) {}
    ScreenProbe(const ScreenProbe&) = delete;
    ScreenProbe& operator=(const ScreenProbe&) = delete;
    ~ScreenProbe() { xcb_disconnect(connection_); }

    void movePointer(Point at) { fake(XCB_MOTION_NOTIFY, 0, at); }
    void press(Point at) {
        movePointer(at);
        fake(XCB_BUTTON_PRESS, 1, at);
    }
    void release(Point at) { fake(XCB_BUTTON_RELEASE, 1, at); }
    void click(Point at) {
        press(at);
        release(at);
    }
    // A key, as if typed.
    void typeKey(std::uint8_t keycode) {
        fake(XCB_KEY_PRESS, keycode, {});
        fake(XCB_KEY_RELEASE, keycode, {});
    }

    // 24-bit RGB values of an area in root pixels, row by row.
    std::vector<std::uint32_t> pixels(const Rect& area) {
        const auto reply = take(xcb_get_image_reply(
            connection_,
            xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_,
                          static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                          static_cast<std::uint16_t>(area.width),
                          static_cast<std::uint16_t>(area.height), ~0U),
            nullptr));
        if (reply == nullptr) return {};
        std::vector<std::uint32_t> values(
            static_cast<std::size_t>(xcb_get_image_data_length(reply.get())) / 4);
        std::memcpy(values.data(), xcb_get_image_data(reply.get()), 4 * values.size());
        for (std::uint32_t& value : values) value &= 0xffffffU;
        return values;
    }

    // Whether the window stands on the screen; nothing is said for windows that are gone.
    bool isViewable(xcb_window_t window) {
        const auto reply = take(xcb_get_window_attributes_reply(
            connection_, xcb_get_window_attributes(connection_, window), nullptr));
        return reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    // The window's place in root pixels; empty when it is gone.
    Rect frame(xcb_window_t window) {
        const auto geometry = take(
            xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
        const auto place = take(xcb_translate_coordinates_reply(
            connection_, xcb_translate_coordinates(connection_, window, root_, 0, 0), nullptr));
        if (geometry == nullptr || place == nullptr) return {};
        return {static_cast<double>(place->dst_x), static_cast<double>(place->dst_y),
                static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
    }

    // The other windows inside the same window that stand on the screen, from the bottom up.
    std::vector<xcb_window_t> siblings(xcb_window_t window) {
        const auto own =
            take(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, window), nullptr));
        if (own == nullptr) return {};
        const auto parent = take(
            xcb_query_tree_reply(connection_, xcb_query_tree(connection_, own->parent), nullptr));
        if (parent == nullptr) return {};
        const xcb_window_t* const children = xcb_query_tree_children(parent.get());
        std::vector<xcb_window_t> others;
        for (int i = 0; i < xcb_query_tree_children_length(parent.get()); ++i)
            if (children[i] != window && isViewable(children[i])) others.push_back(children[i]);
        return others;
    }
    // The events of a window that any program has asked for; all of them when it is gone.
    std::uint32_t eventsAskedFor(xcb_window_t window) {
        const auto reply = take(xcb_get_window_attributes_reply(
            connection_, xcb_get_window_attributes(connection_, window), nullptr));
        return reply == nullptr ? ~0U : reply->all_event_masks;
    }
    xcb_window_t root() const { return root_; }

private:
    template <typename Reply>
    static std::unique_ptr<Reply, decltype(&std::free)> take(Reply* reply) {
        return {reply, &std::free};
    }
    void fake(std::uint8_t type, std::uint8_t detail, Point at) {
        xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, root_,
                            static_cast<std::int16_t>(at.x), static_cast<std::int16_t>(at.y), 0);
        // Answered once the server has done what came before.
        take(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }

    xcb_connection_t* connection_;
    xcb_window_t root_;
};

}  // namespace quorvane
