// Owning handles for replies of the X server, and helpers to wait for them.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Geometry.hpp"
#include "platform/ReleaseWith.hpp"

namespace quorvane {

template <typename T>
using XcbReply = std::unique_ptr<T, ReleaseWith<std::free>>;

// Waits for the reply of a request, for example xcbReply(xcb_get_geometry_reply, connection,
// cookie). Returns null when the request failed, which is usual for foreign windows, or when the
// connection is lost.
template <typename Reply, typename Cookie>
XcbReply<Reply> xcbReply(Reply* (*wait)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                         xcb_connection_t* connection, Cookie cookie) {
    xcb_generic_error_t* error = nullptr;
    XcbReply<Reply> reply{wait(connection, cookie, &error)};
    std::free(error);
    return reply;
}

// Null when the server lacks the extension.
inline const xcb_query_extension_reply_t* presentExtension(xcb_connection_t* connection,
                                                           xcb_extension_t& extension) {
    const auto* found = xcb_get_extension_data(connection, &extension);
    return found && found->present ? found : nullptr;
}

// Bottom-most first; empty when the window is gone.
inline std::vector<xcb_window_t> childrenOf(xcb_connection_t* connection, xcb_window_t window) {
    const auto tree =
        xcbReply(xcb_query_tree_reply, connection, xcb_query_tree(connection, window));
    if (!tree) return {};
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    return {children, children + xcb_query_tree_children_length(tree.get())};
}

// A selection's owner; XCB_WINDOW_NONE without one.
inline xcb_window_t ownerOf(xcb_connection_t* connection, xcb_atom_t selection) {
    const auto reply = xcbReply(xcb_get_selection_owner_reply, connection,
                                xcb_get_selection_owner(connection, selection));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

// The pointer's position in root pixels; nullopt when the server has gone away.
inline std::optional<Point> pointerOn(xcb_connection_t* connection, xcb_window_t root) {
    const auto reply =
        xcbReply(xcb_query_pointer_reply, connection, xcb_query_pointer(connection, root));
    if (!reply) return std::nullopt;
    return Point{static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
}

// Requests a text property. Send all requests before waiting for the first reply: one round trip
// instead of many.
inline xcb_get_property_cookie_t askForText(xcb_connection_t* connection, xcb_window_t window,
                                            xcb_atom_t property, xcb_atom_t type) {
    constexpr std::uint32_t kMaxWords = 1u << 18;
    return xcb_get_property(connection, false, window, property, type, 0, kMaxWords);
}

// The text; "" when the property is missing or of another type.
inline std::string textOf(xcb_connection_t* connection, xcb_get_property_cookie_t asked,
                          xcb_atom_t type) {
    const auto reply = xcbReply(xcb_get_property_reply, connection, asked);
    if (!reply || reply->type != type || reply->format != 8) return {};
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

}  // namespace quorvane
