// What a window is like, asked of the X server.
#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "platform/linux/x11/WindowStack.hpp"
#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {

// Asked when it is made. There may be hundreds of windows: whoever asks about all of them before he
// takes the first answer waits once.
class WindowQuestion {
public:
    struct Answer {
        WindowStack::Entry entry;
        bool isDrawable;
    };

    WindowQuestion(xcb_connection_t* connection, xcb_window_t window)
        : connection_(connection),
          window_(window),
          attributes_(xcb_get_window_attributes(connection, window)),
          geometry_(xcb_get_geometry(connection, window)) {}

    // To be taken once. Nothing when the window has gone.
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
