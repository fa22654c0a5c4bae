#include "platform/linux/x11/MonitorsLinux.hpp"

#include <xcb/randr.h>
#include <xcb/xcbext.h>

#include <utility>

#include "platform/linux/files/Environment.hpp"
#include "platform/linux/x11/XcbReply.hpp"

namespace quorvane {
namespace {

constexpr std::uint32_t kMonitorsMajor = 1;
constexpr std::uint32_t kMonitorsMinor = 5;
constexpr double kMillimetersPerInch = 25.4;
constexpr Duration kSettleTime = std::chrono::milliseconds{150};

// The screen-saver extension, of which one request and one event are used.
struct ScreenSaverSelectInput {
    static constexpr std::uint8_t kOpcode = 2;
    static constexpr std::uint32_t kNotify = 1;
    std::uint32_t header = 0;  // the connection fills it
    xcb_window_t root;
    std::uint32_t mask = kNotify;
};
struct ScreenSaverNotify {
    enum State : std::uint8_t { off, on, cycle };
    enum Kind : std::uint8_t { blanked, internal, external };
    std::uint8_t type;
    State state;
    std::uint16_t sequence;
    xcb_timestamp_t time;
    xcb_window_t root;
    xcb_window_t saver;
    Kind kind;

    // A client's own saver may leave the screen as it is.
    bool isBlank() const { return (state == on || state == cycle) && kind != external; }
};
xcb_extension_t screenSaver{"MIT-SCREEN-SAVER", 0};

double dotsPerInchOf(int pixels, int millimeters) {
    return millimeters == 0 ? 0 : pixels * kMillimetersPerInch / millimeters;
}

// The screen's own value. The event has width and height swapped when the first monitor is rotated.
double dotsPerInchOf(const xcb_randr_screen_change_notify_event_t& change) {
    const bool isTurned =
        (change.rotation & (XCB_RANDR_ROTATION_ROTATE_90 | XCB_RANDR_ROTATION_ROTATE_270)) != 0;
    return isTurned ? dotsPerInchOf(change.width, change.mwidth)
                    : dotsPerInchOf(change.height, change.mheight);
}

}  // namespace

MonitorsLinux::MonitorsLinux(X11Connection& x11, const Clock& clock)
    : x11_(x11),
      clock_(clock),
      screenDotsPerInch_(
          dotsPerInchOf(x11.screen().height_in_pixels, x11.screen().height_in_millimeters)) {
    observeServer();
    observeScreenSaver();
    readLayout();
}

// Energy saving also starts the server's saver.
void MonitorsLinux::observeScreenSaver() {
    const auto* extension = presentExtension(x11_.connection(), screenSaver);
    if (!extension) return;
    observations_.push_back(
        x11_.observeEvents(extension->first_event, [this](const xcb_generic_event_t& event) {
            blankingListeners_.call(reinterpret_cast<const ScreenSaverNotify&>(event).isBlank());
        }));
    ScreenSaverSelectInput request{.root = x11_.root()};
    const xcb_protocol_request_t kind{1, &screenSaver, ScreenSaverSelectInput::kOpcode, 1};
    // The library uses the two entries before the request's own.
    iovec parts[] = {{}, {}, {&request, sizeof request}};
    xcb_send_request(x11_.connection(), 0, parts + 2, &kind);
}

void MonitorsLinux::observeServer() {
    observations_.push_back(x11_.observeWindow(x11_.root(), [this](const auto& event) {
        if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) return;
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        // The server announces a changed monitor definition only as a ConfigureNotify of the root.
        if (change.window == x11_.root()) settle();
    }));
    const auto* extension = presentExtension(x11_.connection(), xcb_randr_id);
    if (!extension) return;
    // An older server rejects requests that it does not know.
    xcb_discard_reply(
        x11_.connection(),
        xcb_randr_query_version(x11_.connection(), kMonitorsMajor, kMonitorsMinor).sequence);
    xcb_randr_select_input(x11_.connection(), x11_.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    const auto typeOf = [&](int number) {
        return static_cast<std::uint8_t>(extension->first_event + number);
    };
    observations_.push_back(x11_.observeEvents(typeOf(XCB_RANDR_NOTIFY),
                                               [this](const xcb_generic_event_t&) { settle(); }));
    // The connection's record of the screen is never updated after connecting.
    observations_.push_back(
        x11_.observeEvents(typeOf(XCB_RANDR_SCREEN_CHANGE_NOTIFY), [this](const auto& event) {
            screenDotsPerInch_ = dotsPerInchOf(
                reinterpret_cast<const xcb_randr_screen_change_notify_event_t&>(event));
            settle();
        }));
}

// A reconfiguration causes many events; each one restarts the timer.
void MonitorsLinux::settle() {
    settled_ = clock_.after(kSettleTime, [this] { refresh(); });
}

void MonitorsLinux::reportSoon() {
    mustReport_ = true;
    settle();
}

void MonitorsLinux::refresh() {
    settled_.reset();
    const ScreenLayout before = layout_;
    readLayout();
    const bool mustReport = std::exchange(mustReport_, false);
    if (mustReport || layout_ != before) listeners_.call();
}

void MonitorsLinux::readLayout() {
    const auto resources =
        askForText(x11_.connection(), x11_.root(), XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING);
    const auto monitors = withoutRepeats(readMonitors());
    const auto userDotsPerInch =
        numberResource(textOf(x11_.connection(), resources, XCB_ATOM_STRING), "Xft.dpi");
    if (monitors.empty()) return;  // the server is going away; keep the last layout
    layout_ = {monitors, scaleFor(environmentVariable("QUORVANE_SCALE"), userDotsPerInch)};
    dotsPerInch_ = userDotsPerInch.value_or(screenDotsPerInch_);
}

std::vector<Rect> MonitorsLinux::readMonitors() {
    std::vector<Rect> frames;
    const auto monitors =
        presentExtension(x11_.connection(), xcb_randr_id)
            ? xcbReply(xcb_randr_get_monitors_reply, x11_.connection(),
                       xcb_randr_get_monitors(x11_.connection(), x11_.root(), true))
            : nullptr;
    if (monitors)
        for (auto each = xcb_randr_get_monitors_monitors_iterator(monitors.get()); each.rem > 0;
             xcb_randr_monitor_info_next(&each)) {
            const auto& monitor = *each.data;
            const Rect frame{static_cast<double>(monitor.x), static_cast<double>(monitor.y),
                             static_cast<double>(monitor.width),
                             static_cast<double>(monitor.height)};
            frames.insert(monitor.primary ? frames.begin() : frames.end(), frame);
        }
    if (!frames.empty()) return frames;
    const auto root = xcbReply(xcb_get_geometry_reply, x11_.connection(),
                               xcb_get_geometry(x11_.connection(), x11_.root()));
    if (root)
        frames.push_back(
            {0, 0, static_cast<double>(root->width), static_cast<double>(root->height)});
    return frames;
}

}  // namespace quorvane
