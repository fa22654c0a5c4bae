#include "platform/linux/x11/card/BackdropWatch.hpp"

#include <algorithm>
#include <span>

#include "platform/linux/x11/XcbReply.hpp"
#include "platform/linux/x11/card/CardRequests.hpp"

namespace quorvane {
namespace {

// i3lock clears and paints a screen within 20 ms; keys are typed 100 ms or more apart.
constexpr Duration kSettleTime = std::chrono::milliseconds{100};
// The longest interval between checks while a locker draws without a pause.
constexpr Duration kLongestPause = std::chrono::seconds{3};

}  // namespace

BackdropWatch::BackdropWatch(X11Session& x11, Clock clock, xcb_window_t locker,
                             const PixelRect& area, Listener listener)
    : x11_(x11), clock_(std::move(clock)), area_(area), listener_(std::move(listener)) {
    xcb_connection_t* connection = x11_.connection();
    const auto* extension = presentExtension(connection, xcb_damage_id);
    if (!extension || !presentExtension(connection, xcb_xfixes_id)) return;
    // The server rejects requests from clients that have not negotiated a version.
    const auto damageVersion = xcb_damage_query_version(connection, 1, 1);
    const auto fixesVersion = xcb_xfixes_query_version(connection, 5, 0);
    if (!xcbReply(xcb_damage_query_version_reply, connection, damageVersion) ||
        !xcbReply(xcb_xfixes_query_version_reply, connection, fixesVersion))
        return;
    region_ = xcb_generate_id(connection);
    damage_ = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, region_, 0, nullptr);
    xcb_damage_create(connection, damage_, locker, XCB_DAMAGE_REPORT_LEVEL_BOUNDING_BOX);
    // A new damage object starts with the whole window damaged, and the server reports this at
    // once.
    const unsigned beginning =
        xcb_damage_subtract(connection, damage_, XCB_NONE, XCB_NONE).sequence;
    events_ = x11_.observeEvents(
        static_cast<std::uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY),
        [this, beginning](const xcb_generic_event_t& event) {
            const auto& notice = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
            const PixelRect box{notice.area.x, notice.area.y, notice.area.width,
                                notice.area.height};
            const bool isNew = event.full_sequence >= beginning && !area_.contains(box);
            if (notice.damage == damage_ && isNew) noticed();
        });
}

BackdropWatch::~BackdropWatch() {
    if (damage_ == XCB_NONE) return;
    // The locker's window may be gone, and the damage object with it; the error is harmless.
    xcb_damage_destroy(x11_.connection(), damage_);
    xcb_xfixes_destroy_region(x11_.connection(), region_);
}

void BackdropWatch::awaitRest() {
    if (isWatching() && !pauseEnd_) waitFor(kSettleTime);
}

// The server reports only damage beyond the damage already reported since the last subtract.
// Without a subtract, a locker that draws all the time does not wake this process.
void BackdropWatch::noticed() {
    if (pauseEnd_ && !isImmediate_) return;
    if (!takeDrawing()) return;
    if (pauseEnd_)
        hasDrawn_ = true;
    else
        waitFor(kSettleTime);
    if (isImmediate_) listener_.drawn();
}

void BackdropWatch::waitFor(Duration pause) {
    pause_ = pause;
    hasDrawn_ = false;
    pauseEnd_ = clock_.after(pause, [this] { pauseEnded(); });
}

void BackdropWatch::pauseEnded() {
    pauseEnd_.reset();
    if (takeDrawing() || hasDrawn_) return waitFor(std::min(pause_ * 2, kLongestPause));
    listener_.rested();
}

// Our own drawing also damages the locker's window. The server clips the locker's drawing to the
// outside of our window, so the locker's damage is the damage that extends past our edges.
bool BackdropWatch::takeDrawing() {
    xcb_connection_t* connection = x11_.connection();
    xcb_damage_subtract(connection, damage_, XCB_NONE, region_);
    const auto reply = xcbReply(xcb_xfixes_fetch_region_reply, connection,
                                xcb_xfixes_fetch_region(connection, region_));
    if (!reply) return false;
    const std::span rectangles{
        xcb_xfixes_fetch_region_rectangles(reply.get()),
        static_cast<std::size_t>(xcb_xfixes_fetch_region_rectangles_length(reply.get()))};
    const PixelRect near = grownBy(area_, 1);
    return std::ranges::any_of(rectangles, [&](const xcb_rectangle_t& one) {
        const PixelRect damaged{one.x, one.y, one.width, one.height};
        return !area_.contains(damaged) && !near.intersection(damaged).isEmpty();
    });
}

}  // namespace quorvane
