#include "platform/linux/LockerPictureWatch.hpp"

#include <span>

#include "platform/linux/XcbReply.hpp"

namespace quorvane {
namespace {

constexpr Duration kPause = std::chrono::milliseconds{500};

const xcb_query_extension_reply_t* present(xcb_connection_t* connection,
                                           xcb_extension_t& extension) {
    const auto* found = xcb_get_extension_data(connection, &extension);
    return found && found->present ? found : nullptr;
}

}  // namespace

LockerPictureWatch::LockerPictureWatch(X11Session& x11, Clock clock, xcb_window_t locker,
                                       const PixelRect& area, std::function<void()> changed)
    : x11_(x11), clock_(std::move(clock)), area_(area), changed_(std::move(changed)) {
    if (begin(locker)) lastLook_ = clock_.now();
}

LockerPictureWatch::~LockerPictureWatch() {
    if (damage_ == XCB_NONE) return;
    // The locker may have gone, and the server's damage object with it; the error is harmless.
    xcb_damage_destroy(x11_.connection(), damage_);
    xcb_xfixes_destroy_region(x11_.connection(), region_);
}

bool LockerPictureWatch::begin(xcb_window_t locker) {
    xcb_connection_t* connection = x11_.connection();
    const auto* extension = present(connection, xcb_damage_id);
    if (!extension || !present(connection, xcb_xfixes_id)) return false;
    // The server refuses the requests of clients that have not named a version.
    const auto damageVersion = xcb_damage_query_version(connection, 1, 1);
    const auto fixesVersion = xcb_xfixes_query_version(connection, 5, 0);
    if (!xcbReply(xcb_damage_query_version_reply, connection, damageVersion) ||
        !xcbReply(xcb_xfixes_query_version_reply, connection, fixesVersion))
        return false;
    region_ = xcb_generate_id(connection);
    damage_ = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, region_, 0, nullptr);
    xcb_damage_create(connection, damage_, locker, XCB_DAMAGE_REPORT_LEVEL_BOUNDING_BOX);
    // A new object begins with the whole window damaged, which the server tells of at once.
    const unsigned beginning =
        xcb_damage_subtract(connection, damage_, XCB_NONE, XCB_NONE).sequence;
    events_ = x11_.observeEvents(
        static_cast<std::uint8_t>(extension->first_event + XCB_DAMAGE_NOTIFY),
        [this, beginning](const xcb_generic_event_t& event) {
            const auto& notice = reinterpret_cast<const xcb_damage_notify_event_t&>(event);
            const PixelRect box{notice.area.x, notice.area.y, notice.area.width,
                                notice.area.height};
            const bool isNews = event.full_sequence >= beginning && !area_.contains(box);
            if (notice.damage == damage_ && isNews) noticed();
        });
    return true;
}

// The server tells when the damage reaches farther than before, so our own drawing is heard of once
// and no more. A look that is put off takes in all that happens meanwhile.
void LockerPictureWatch::noticed() {
    if (nextLook_) return;
    const Duration left = kPause - (clock_.now() - lastLook_);
    if (left <= Duration{})
        look();
    else
        nextLook_ = clock_.after(left, [this] { look(); });
}

void LockerPictureWatch::look() {
    nextLook_.reset();
    lastLook_ = clock_.now();
    if (lockerHasDrawn()) changed_();
}

// Our own drawing counts as the locker's window's damage too. What a locker draws is cut off where
// our window stands, so it can be told by its reaching past our edges.
bool LockerPictureWatch::lockerHasDrawn() {
    xcb_connection_t* connection = x11_.connection();
    xcb_damage_subtract(connection, damage_, XCB_NONE, region_);
    const auto reply = xcbReply(xcb_xfixes_fetch_region_reply, connection,
                                xcb_xfixes_fetch_region(connection, region_));
    if (!reply) return false;
    const std::span rectangles{
        xcb_xfixes_fetch_region_rectangles(reply.get()),
        static_cast<std::size_t>(xcb_xfixes_fetch_region_rectangles_length(reply.get()))};
    const PixelRect near{area_.x - 1, area_.y - 1, area_.width + 2, area_.height + 2};
    for (const xcb_rectangle_t& one : rectangles) {
        const PixelRect damaged{one.x, one.y, one.width, one.height};
        if (!area_.contains(damaged) && !near.intersection(damaged).isEmpty()) return true;
    }
    return false;
}

}  // namespace quorvane
