// A pending query to the X server for a window's attributes and geometry.
#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "platform/linux/x11/WindowStack.hpp"
#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {

// The constructor sends the requests. Create the queries for all windows before taking the first
// answer: one round trip instead of hundreds.
class WindowQuery {
public:
    struct Answer {
        WindowStack::Entry entry;
        bool isDrawable;
    };

    WindowQuery(xcb_connection_t* connection, xcb_window_t window)
        : connection_(connection),
          window_(window),
          attributes_(xcb_get_window_attributes(connection, window)),
          geometry_(xcb_get_geometry(connection, window)) {}

    // Call once. Returns nullopt when the window is gone.
    std::optional<Answer> answer() const {
        const auto attributes = xcbReply(xcb_get_window_attributes_reply, connection_, attributes_);
        const auto geometry = xcbReply(xcb_get_geometry_reply, connection_, geometry_);
        if (!attributes || !geometry) return std::nullopt;
        const double border = 2.0 * geometry->border_width;
        return Answer{{window_,
                       {static_cast<double>(geometry->x), static_cast<double>(geometry->y),
                        geometry->width + border, geometry->height + border},
                       attributes->map_state != XCB_MAP_STATE_UNMAPPED,
                       attributes->override_redirect != 0},
                      attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT};
    }

private:
    xcb_connection_t* connection_;
    xcb_window_t window_;
    xcb_get_window_attributes_cookie_t attributes_;
    xcb_get_geometry_cookie_t geometry_;
};

}  // namespace quorvane
