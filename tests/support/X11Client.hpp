// Another client of the X server: it acts as lockers, overlays and the user's pointer, and reads
// the screen's windows.
#pragma once

#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "drawing/Geometry.hpp"
#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {

class X11Client {
public:
    explicit X11Client(const std::string& display)
        : connection_(xcb_connect(display.c_str(), nullptr)),
          screen_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data) {}
    ~X11Client() { disconnect(); }
    X11Client(const X11Client&) = delete;
    X11Client& operator=(const X11Client&) = delete;

    xcb_connection_t* connection() const { return connection_; }
    xcb_window_t root() const { return screen_->root; }

    // Looks to the server like the end of the process, by any signal.
    void disconnect() {
        if (connection_) xcb_disconnect(std::exchange(connection_, nullptr));
    }
    // Returns when the server has executed all requests so far.
    void sync() const {
        xcbReply(xcb_get_input_focus_reply, connection_, xcb_get_input_focus(connection_));
    }

    // Not mapped. `parent` is the root when left out.
    xcb_window_t makeWindow(const Rect& frame, bool isOverrideRedirect = true,
                            xcb_window_t parent = XCB_WINDOW_NONE,
                            xcb_window_t number = XCB_WINDOW_NONE) const {
        const xcb_window_t window =
            number == XCB_WINDOW_NONE ? xcb_generate_id(connection_) : number;
        const std::uint32_t values[] = {isOverrideRedirect ? 1u : 0u};
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window,
                          parent == XCB_WINDOW_NONE ? root() : parent, std::int16_t(frame.x),
                          std::int16_t(frame.y), std::uint16_t(frame.width),
                          std::uint16_t(frame.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, values);
        return window;
    }
    void setClass(xcb_window_t window, std::string_view instance, std::string_view name) const {
        const std::string both = std::string{instance} + '\0' + std::string{name} + '\0';
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_CLASS,
                            XCB_ATOM_STRING, 8, std::uint32_t(both.size()), both.data());
    }
    void map(xcb_window_t window) const { xcb_map_window(connection_, window); }
    void unmap(xcb_window_t window) const { xcb_unmap_window(connection_, window); }
    void destroy(xcb_window_t window) const { xcb_destroy_window(connection_, window); }
    void configure(xcb_window_t window, const Rect& frame) const {
        const std::uint32_t values[] = {std::uint32_t(int(frame.x)), std::uint32_t(int(frame.y)),
                                        std::uint32_t(frame.width), std::uint32_t(frame.height)};
        xcb_configure_window(connection_, window,
                             XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                                 XCB_CONFIG_WINDOW_HEIGHT,
                             values);
    }
    void restack(xcb_window_t window, std::uint32_t mode) const {
        xcb_configure_window(connection_, window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
    }

    bool grabKeyboard() const {
        const auto reply = xcbReply(xcb_grab_keyboard_reply, connection_,
                                    xcb_grab_keyboard(connection_, true, root(), XCB_CURRENT_TIME,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    void ungrabKeyboard() const { xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME); }
    bool grabPointer(xcb_cursor_t cursor = XCB_CURSOR_NONE) const {
        const auto reply = xcbReply(
            xcb_grab_pointer_reply, connection_,
            xcb_grab_pointer(connection_, false, root(), 0, XCB_GRAB_MODE_ASYNC,
                             XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, cursor, XCB_CURRENT_TIME));
        return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }

    xcb_atom_t atom(std::string_view name) const {
        const auto reply =
            xcbReply(xcb_intern_atom_reply, connection_,
                     xcb_intern_atom(connection_, false, std::uint16_t(name.size()), name.data()));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    void setRootNumber(std::string_view property, xcb_atom_t type, std::uint32_t value) const {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, root(), atom(property), type, 32, 1,
                            &value);
    }
    void setResources(std::string_view text) const {
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, root(), XCB_ATOM_RESOURCE_MANAGER,
                            XCB_ATOM_STRING, 8, std::uint32_t(text.size()), text.data());
    }

    // The server's information about a window; null or empty when the window is gone.
    XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_window_t window) const {
        return xcbReply(xcb_get_window_attributes_reply, connection_,
                        xcb_get_window_attributes(connection_, window));
    }
    bool isViewable(xcb_window_t window) const {
        const auto reply = attributes(window);
        return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    // In root pixels.
    Rect frame(xcb_window_t window) const {
        const auto size =
            xcbReply(xcb_get_geometry_reply, connection_, xcb_get_geometry(connection_, window));
        const auto place = xcbReply(xcb_translate_coordinates_reply, connection_,
                                    xcb_translate_coordinates(connection_, window, root(), 0, 0));
        if (!size || !place) return {};
        return {double(place->dst_x), double(place->dst_y), double(size->width),
                double(size->height)};
    }
    xcb_window_t parent(xcb_window_t window) const {
        const auto reply =
            xcbReply(xcb_query_tree_reply, connection_, xcb_query_tree(connection_, window));
        return reply ? reply->parent : xcb_window_t{XCB_WINDOW_NONE};
    }
    // From the bottom up.
    std::vector<xcb_window_t> children(xcb_window_t window) const {
        return childrenOf(connection_, window);
    }

    // Pointer input, through the server's test extension.
    void movePointer(int x, int y) const {
        xcb_test_fake_input(connection_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, root(),
                            std::int16_t(x), std::int16_t(y), 0);
    }
    void button(unsigned number, bool isDown) const {
        xcb_test_fake_input(connection_, isDown ? XCB_BUTTON_PRESS : XCB_BUTTON_RELEASE,
                            std::uint8_t(number), XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
    }
    // All clients have received the event when these return.
    void click(Point at) const {
        movePointer(int(at.x), int(at.y));
        button(1, true);
        button(1, false);
        sync();
    }
    void type(unsigned code) const {
        for (const std::uint8_t kind : {XCB_KEY_PRESS, XCB_KEY_RELEASE})
            xcb_test_fake_input(connection_, kind, std::uint8_t(code), XCB_CURRENT_TIME,
                                XCB_WINDOW_NONE, 0, 0, 0);
        sync();
    }

private:
    xcb_connection_t* connection_;
    const xcb_screen_t* screen_;
};

}  // namespace quorvane
