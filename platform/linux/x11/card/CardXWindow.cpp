#include "platform/linux/x11/card/CardXWindow.hpp"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "platform/linux/x11/XcbReply.hpp"
#include "platform/linux/x11/card/CardRequests.hpp"

namespace quorvane {
namespace {

std::optional<FoundLocker> lockerAt(X11Session& x11, Point point) {
    for (const FoundLocker& locker : x11.lockerWindows())
        if (locker.frame.contains(point)) return locker;
    return std::nullopt;
}

// Our pictures have eight bits per channel, blue lowest.
bool hasUsualColors(const xcb_screen_t& screen, xcb_visualid_t visual) {
    for (auto depth = xcb_screen_allowed_depths_iterator(&screen); depth.rem > 0;
         xcb_depth_next(&depth))
        for (auto type = xcb_depth_visuals_iterator(depth.data); type.rem > 0;
             xcb_visualtype_next(&type))
            if (type.data->visual_id == visual)
                return type.data->red_mask == 0xff0000 && type.data->green_mask == 0xff00 &&
                       type.data->blue_mask == 0xff && depth.data->depth >= 24;
    return false;
}

constexpr std::string_view kWindowName = "Quorvane Lock Screen card";

std::uint32_t valueOf(int number) { return static_cast<std::uint32_t>(number); }

}  // namespace

std::unique_ptr<CardXWindow> CardXWindow::make(X11Session& x11, const Logger& log,
                                               const Rect& frame, const Screen& screen,
                                               Events events) {
    const Rect wanted = x11.pixels(frame);
    const auto locker = lockerAt(x11, {wanted.midX(), wanted.midY()});
    if (!locker) {
        log.error("windows: no locker's window is at %{public}s", describe(wanted));
        return nullptr;
    }
    std::unique_ptr<CardXWindow> child{new CardXWindow{x11, *locker, std::move(events)}};
    if (!child->create(frame, screen.keepClear)) {
        log.error("windows: the locker's window %lu takes no card", std::uint64_t{locker->window});
        return nullptr;
    }
    return child;
}

CardXWindow::CardXWindow(X11Session& x11, const FoundLocker& locker, Events events)
    : x11_(x11), locker_(locker), events_(std::move(events)) {}

CardXWindow::~CardXWindow() { destroy(); }

bool CardXWindow::create(const Rect& frame, const std::vector<Rect>& keepClear) {
    xcb_connection_t* connection = x11_.connection();
    const auto geometryRequest = xcb_get_geometry(connection, locker_.window);
    const auto attributesRequest = xcb_get_window_attributes(connection, locker_.window);
    const auto geometry = xcbReply(xcb_get_geometry_reply, connection, geometryRequest);
    const auto attributes =
        xcbReply(xcb_get_window_attributes_reply, connection, attributesRequest);
    if (!geometry || !attributes || !hasUsualColors(x11_.screen(), attributes->visual))
        return false;
    depth_ = geometry->depth;
    place_ = placeFor(frame);
    const xcb_window_t window = xcb_generate_id(connection);
    // No background: until something is drawn, the window keeps the pixels that were there before.
    const std::uint32_t values[] = {XCB_BACK_PIXMAP_NONE, XCB_GRAVITY_NORTH_WEST, 1,
                                    XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_VISIBILITY_CHANGE |
                                        XCB_EVENT_MASK_STRUCTURE_NOTIFY};
    const xcb_rectangle_t box = boxOf(place_);
    const auto request = xcb_create_window_checked(
        connection, XCB_COPY_FROM_PARENT, window, locker_.window, box.x, box.y, box.width,
        box.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXMAP | XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
        values);
    const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection, request)};
    if (error || xcb_connection_has_error(connection)) return false;
    // For tools that list windows, such as xwininfo.
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME,
                        XCB_ATOM_STRING, 8, kWindowName.size(), kWindowName.data());
    window_ = window;
    exists_ = true;
    observation_ = x11_.observeWindow(window_, [this](const auto& event) { handle(event); });
    cutOut(keepClear);
    return true;
}

PixelRect CardXWindow::placeFor(const Rect& frame) const {
    const PixelRect place =
        pixelsTouchedBy(x11_.pixels(frame).movedBy(-locker_.frame.x, -locker_.frame.y));
    return {place.x, place.y, std::max(1, place.width), std::max(1, place.height)};
}

void CardXWindow::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
        case XCB_EXPOSE: {
            const auto& part = reinterpret_cast<const xcb_expose_event_t&>(event);
            events_.exposed({part.x, part.y, part.width, part.height});
            return;
        }
        case XCB_VISIBILITY_NOTIFY:
            events_.covered(reinterpret_cast<const xcb_visibility_notify_event_t&>(event).state ==
                            XCB_VISIBILITY_FULLY_OBSCURED);
            return;
        case XCB_DESTROY_NOTIFY: {
            if (!std::exchange(exists_, false)) return;
            isMapped_ = false;
            // Last, because the listener may destroy this object.
            const auto destroyed = events_.destroyed;
            return destroyed();
        }
        default: return;
    }
}

bool CardXWindow::isOnTopAt(Point rootPoint) {
    if (!isMapped_) return false;
    xcb_connection_t* connection = x11_.connection();
    const auto found =
        xcbReply(xcb_translate_coordinates_reply, connection,
                 xcb_translate_coordinates(connection, x11_.screen().root, locker_.window,
                                           static_cast<std::int16_t>(rootPoint.x),
                                           static_cast<std::int16_t>(rootPoint.y)));
    return found && found->child == window_;
}

void CardXWindow::map() {
    if (!exists_ || std::exchange(isMapped_, true)) return;
    stackAboveCover();
    xcb_map_window(x11_.connection(), window_);
}

void CardXWindow::unmap() {
    if (!std::exchange(isMapped_, false)) return;
    xcb_unmap_window(x11_.connection(), window_);
    x11_.flush();
}

void CardXWindow::moveTo(const PixelRect& place) {
    if (!exists_ || place == place_) return;
    place_ = place;
    const std::uint32_t values[] = {valueOf(place.x), valueOf(place.y), valueOf(place.width),
                                    valueOf(place.height)};
    xcb_configure_window(x11_.connection(), window_,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH |
                             XCB_CONFIG_WINDOW_HEIGHT,
                         values);
}

void CardXWindow::cutOut(const std::vector<Rect>& areas) {
    if (!exists_) return;
    std::vector<PixelRect> holes;
    for (const Rect& area : areas)
        holes.push_back(pixelsTouchedBy(x11_.pixels(area).movedBy(-origin().x, -origin().y)));
    if (holes == holes_) return;
    holes_ = std::move(holes);
    applyShape();
}

void CardXWindow::setOutline(std::vector<PixelRect> parts) {
    if (!exists_ || parts == outline_) return;
    outline_ = std::move(parts);
    applyShape();
}

void CardXWindow::applyShape() {
    xcb_connection_t* connection = x11_.connection();
    if (!presentExtension(connection, xcb_shape_id)) return;
    if (outline_.empty())
        xcb_shape_mask(connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, window_, 0, 0,
                       XCB_NONE);
    else
        shape(XCB_SHAPE_SO_SET, outline_);
    if (!holes_.empty()) shape(XCB_SHAPE_SO_SUBTRACT, holes_);
    x11_.flush();
}

void CardXWindow::shape(xcb_shape_so_t operation, const std::vector<PixelRect>& parts) {
    std::vector<xcb_rectangle_t> rectangles;
    for (const PixelRect& part : parts) rectangles.push_back(boxOf(part));
    xcb_shape_rectangles(x11_.connection(), operation, XCB_SHAPE_SK_BOUNDING,
                         XCB_CLIP_ORDERING_UNSORTED, window_, 0, 0,
                         static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
}

void CardXWindow::destroy() {
    observation_.reset();
    isMapped_ = false;
    if (!std::exchange(exists_, false)) return;
    xcb_destroy_window(x11_.connection(), window_);
    x11_.flush();
}

// Some lockers show their picture in a child that fills their window, and the password prompt in
// another child. The card belongs directly above the first and below all others. It is stacked
// once, before it is mapped. Part of its margin may be off the screen, where no child of the locker
// reaches.
void CardXWindow::stackAboveCover() {
    xcb_connection_t* connection = x11_.connection();
    const PixelRect visible = place_.intersection(
        {0, 0, static_cast<int>(locker_.frame.width), static_cast<int>(locker_.frame.height)});
    xcb_window_t cover = XCB_WINDOW_NONE;
    xcb_window_t lowest = XCB_WINDOW_NONE;
    for (const xcb_window_t sibling : childrenOf(connection, locker_.window)) {
        if (sibling == window_) continue;
        const auto geometryRequest = xcb_get_geometry(connection, sibling);
        const auto attributesRequest = xcb_get_window_attributes(connection, sibling);
        const auto geometry = xcbReply(xcb_get_geometry_reply, connection, geometryRequest);
        const auto attributes =
            xcbReply(xcb_get_window_attributes_reply, connection, attributesRequest);
        if (!geometry || !attributes) continue;
        if (lowest == XCB_WINDOW_NONE) lowest = sibling;
        const PixelRect box{geometry->x, geometry->y, geometry->width, geometry->height};
        if (attributes->map_state == XCB_MAP_STATE_VIEWABLE && box.contains(visible))
            cover = sibling;
    }
    if (lowest == XCB_WINDOW_NONE) return;
    const bool isCovered = cover != XCB_WINDOW_NONE;
    const std::uint32_t values[] = {
        isCovered ? cover : lowest,
        valueOf(isCovered ? XCB_STACK_MODE_ABOVE : XCB_STACK_MODE_BELOW)};
    xcb_configure_window(connection, window_,
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values);
}

}  // namespace quorvane
