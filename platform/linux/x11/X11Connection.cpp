#include "platform/linux/x11/X11Connection.hpp"

#include <sys/epoll.h>
#include <xcb/xcbext.h>

#include <cstring>
#include <utility>

#include "platform/linux/files/Environment.hpp"
#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {
namespace {

constexpr std::uint8_t kSentFlag = 0x80;
constexpr std::uint8_t kFirstExtensionEvent = 64;

std::uint8_t typeOf(const xcb_generic_event_t& event) {
    return static_cast<std::uint8_t>(event.response_type & ~kSentFlag);
}

// The window that the event is reported on. Input events carry it elsewhere, but are never
// selected. All others carry it right after the sequence number, including extension events about
// one window or drawable.
xcb_window_t windowOf(const xcb_generic_event_t& event) {
    if (typeOf(event) == XCB_MAPPING_NOTIFY || typeOf(event) == XCB_GE_GENERIC)
        return XCB_WINDOW_NONE;
    return reinterpret_cast<const xcb_map_notify_event_t&>(event).event;
}

const char* reasonOf(int error) {
    switch (error) {
        case XCB_CONN_CLOSED_PARSE_ERR: return "the display's name makes no sense";
        case XCB_CONN_CLOSED_INVALID_SCREEN: return "the display has no such screen";
        default: return "no X server answers there";
    }
}

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && number > 0; --number) xcb_screen_next(&screens);
    return screens.data;
}

}  // namespace

Result<std::unique_ptr<X11Connection>> X11Connection::open(EventLoop& loop,
                                                           const std::string& display,
                                                           std::function<void()> onLost) {
    int screen = 0;
    xcb_connection_t* connection =
        xcb_connect(display.empty() ? nullptr : display.c_str(), &screen);
    if (const int error = xcb_connection_has_error(connection)) {
        xcb_disconnect(connection);
        const std::string name{display.empty() ? environmentVariable("DISPLAY") : display};
        return std::unexpected(PlatformError{PlatformError::Domain::service, error,
                                             "cannot open the display \"" + name + "\": " +
                                                 reasonOf(error) + "; start it in an X11 session"});
    }
    return std::unique_ptr<X11Connection>{
        new X11Connection(loop, connection, screen, std::move(onLost))};
}

X11Connection::X11Connection(EventLoop& loop, xcb_connection_t* connection, int screenNumber,
                             std::function<void()> onLost)
    : connection_(connection),
      screenNumber_(screenNumber),
      screen_(screenOf(connection, screenNumber)),
      onLost_(std::move(onLost)),
      watch_(loop.watch(xcb_get_file_descriptor(connection), EPOLLIN,
                        [this](std::uint32_t) { readEvents(); })),
      // Waiting for a reply may also read events into the queue; the descriptor does not signal
      // those.
      beforeSleep_(loop.beforeSleep([this] { handleQueued(); })) {}

X11Connection::~X11Connection() {
    beforeSleep_.reset();
    watch_.reset();
    xcb_disconnect(connection_);
}

xcb_atom_t X11Connection::atom(const char* name) {
    if (const auto known = atoms_.find(name); known != atoms_.end()) return known->second;
    const auto reply = xcbReply(
        xcb_intern_atom_reply, connection_,
        xcb_intern_atom(connection_, false, static_cast<std::uint16_t>(std::strlen(name)), name));
    if (!reply) return XCB_ATOM_NONE;
    return atoms_.emplace(name, reply->atom).first->second;
}

std::uint32_t X11Connection::clientOf(xcb_window_t window) const {
    return window & ~xcb_get_setup(connection_)->resource_id_mask;
}

bool X11Connection::isOwn(xcb_window_t window) const {
    return clientOf(window) == xcb_get_setup(connection_)->resource_id_base;
}

Handle X11Connection::observeWindow(xcb_window_t window, EventHandler handler) {
    return windowListeners_.add([window, handler = std::move(handler)](
                                    xcb_window_t target, const xcb_generic_event_t& event) {
        if (target == window) handler(event);
    });
}

Handle X11Connection::observeEvents(std::uint8_t type, EventHandler handler) {
    return typeListeners_.add(
        [type, handler = std::move(handler)](const xcb_generic_event_t& event) {
            if (typeOf(event) == type) handler(event);
        });
}

void X11Connection::readEvents() {
    while (dispatchOne(xcb_poll_for_event(connection_))) continue;
    checkConnection();
}

void X11Connection::handleQueued() {
    do {
        while (dispatchOne(xcb_poll_for_queued_event(connection_))) continue;
        quietListeners_.call();
        xcb_flush(connection_);
        // The listeners may have waited for replies, and flushing may read too. Either may have
        // queued further events, which would not wake the loop.
    } while (dispatchOne(xcb_poll_for_queued_event(connection_)));
    checkConnection();
}

bool X11Connection::dispatchOne(xcb_generic_event_t* polled) {
    const XcbReply<xcb_generic_event_t> event{polled};
    if (event) dispatch(*event);
    return event != nullptr;
}

void X11Connection::dispatch(const xcb_generic_event_t& event) {
    if (event.response_type == 0) return;
    if (typeOf(event) >= kFirstExtensionEvent || typeOf(event) == XCB_GE_GENERIC)
        typeListeners_.call(event);
    if (const xcb_window_t window = windowOf(event); window != XCB_WINDOW_NONE)
        windowListeners_.call(window, event);
}

void X11Connection::checkConnection() {
    if (!onLost_ || xcb_connection_has_error(connection_) == 0) return;
    watch_.reset();  // its descriptor is closed or always readable
    std::exchange(onLost_, nullptr)();
}

}  // namespace quorvane
