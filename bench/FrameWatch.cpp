#include "bench/FrameWatch.hpp"

#include <poll.h>

#include <cstdlib>

#include "bench/Measuring.hpp"

namespace quorvane {
namespace {

xcb_window_t rootOf(xcb_connection_t* connection) {
    return xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
}

}  // namespace

FrameWatch::FrameWatch(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
    const auto* const extension = xcb_get_extension_data(connection_, &xcb_damage_id);
    if (!extension || !extension->present) die("the X server's damage extension");
    firstEvent_ = extension->first_event;
    std::free(xcb_damage_query_version_reply(connection_,
                                             xcb_damage_query_version(connection_, 1, 1), nullptr));
    xcb_damage_create(connection_, xcb_generate_id(connection_), rootOf(connection_),
                      XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    // The first report covers the whole screen; the reply comes after it.
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    while (xcb_generic_event_t* const event = xcb_poll_for_event(connection_)) std::free(event);
}

std::vector<Frame> FrameWatch::watch(std::chrono::steady_clock::time_point until) {
    std::vector<Frame> frames;
    while (true) {
        while (xcb_generic_event_t* const event = xcb_poll_for_event(connection_)) {
            const auto& area = reinterpret_cast<xcb_damage_notify_event_t*>(event)->area;
            if ((event->response_type & 0x7f) == firstEvent_ + XCB_DAMAGE_NOTIFY)
                frames.push_back({std::chrono::steady_clock::now(), area.width, area.height});
            std::free(event);
        }
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        if (left.count() <= 0) return frames;
        pollfd entry{xcb_get_file_descriptor(connection_), POLLIN, 0};
        poll(&entry, 1, static_cast<int>(left.count()));
    }
}

void FrameWatch::setDotsPerInch(const std::string& display, int dots) {
    const std::string text = "Xft.dpi:\t" + std::to_string(dots) + "\n";
    xcb_connection_t* const connection = xcb_connect(display.c_str(), nullptr);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, rootOf(connection),
                        XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
    // The reply comes after the server has handled the change.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    xcb_disconnect(connection);
}

}  // namespace quorvane
