#include "platform/linux/x11/card/Backdrop.hpp"

#include <xcb/composite.h>

#include <array>
#include <utility>

#include "platform/linux/x11/XcbReply.hpp"
#include "platform/linux/x11/card/CardRequests.hpp"

namespace quorvane {
namespace {

constexpr std::size_t kMaxThroughConnection = 65536;  // bytes
constexpr std::uint32_t kEveryPlane = ~0U;
// Remains where the locker's window has no background. A colour that no locker is likely to show.
constexpr std::uint32_t kUntouched = 0xfd02fb;
constexpr int kEdge = 2;  // pixels

// The strips just outside an area's four sides.
std::array<PixelRect, 4> sidesOf(const PixelRect& area) {
    const PixelRect around = grownBy(area, kEdge);
    return {PixelRect{around.x, around.y, around.width, kEdge},
            {around.x, area.maxY(), around.width, kEdge},
            {around.x, area.y, kEdge, area.height},
            {area.maxX(), area.y, kEdge, area.height}};
}

void append(EdgePixels& edge, Pixels pixels, const PixelRect& side, const LockerPlace& place) {
    for (const PixelRect& hole : place.holes) {
        const PixelRect inside = hole.movedBy(place.area.x - side.x, place.area.y - side.y);
        fill(pixels, inside, kOpaqueBlack);
    }
    edge.insert(edge.end(), pixels.values.begin(), pixels.values.end());
}

Pixels opaque(const PixelRect& area, const void* values) {
    Pixels picture{area.width, area.height, static_cast<const std::uint32_t*>(values)};
    for (std::uint32_t& value : picture.values) value |= kOpaqueBlack;
    return picture;
}

}  // namespace

// In the window's coordinates. The server refuses to read pixels that are not on the screen. Both
// sizes are queried, because they change while the screen is locked and the connection's record of
// the screen is never updated.
std::optional<PixelRect> Backdrop::readable() {
    xcb_connection_t* connection = x11_.connection();
    const auto rootRequest = xcb_get_geometry(connection, x11_.screen().root);
    const auto lockerRequest = xcb_get_geometry(connection, locker_);
    const auto root = xcbReply(xcb_get_geometry_reply, connection, rootRequest);
    const auto locker = xcbReply(xcb_get_geometry_reply, connection, lockerRequest);
    if (!root || !locker) return std::nullopt;
    const PixelRect onScreen{-locker->x, -locker->y, root->width, root->height};
    return onScreen.intersection({0, 0, locker->width, locker->height});
}

std::optional<Pixels> Backdrop::visible(const PixelRect& area, const ServerMemory* lent) {
    const auto bounds = readable();
    return bounds ? visible(area, *bounds, lent) : std::nullopt;
}

std::optional<Pixels> Backdrop::visible(const PixelRect& area, const PixelRect& bounds,
                                        const ServerMemory* lent) {
    const PixelRect part = area.intersection(bounds);
    if (part == area) return read(locker_, area, lent);
    Pixels picture{area.width, area.height, kOpaqueBlack};
    if (part.isEmpty()) return picture;
    const auto pixels = read(locker_, part, nullptr);
    if (!pixels) return std::nullopt;
    copyInto(picture, *pixels, part.x - area.x, part.y - area.y);
    return picture;
}

std::optional<EdgePixels> Backdrop::visibleEdge(const LockerPlace& place) {
    const auto bounds = readable();
    if (!bounds) return std::nullopt;
    EdgePixels edge;
    for (const PixelRect& side : sidesOf(place.area)) {
        auto pixels = visible(side, *bounds, nullptr);
        if (!pixels) return std::nullopt;
        append(edge, std::move(*pixels), side, place);
    }
    return edge;
}

std::optional<Backdrop::Background> Backdrop::background(const LockerPlace& place) {
    const auto& area = place.area;
    const PixelRect around = grownBy(area, kEdge);
    const auto bounds = readable();
    if (!bounds || !hasComposite()) return std::nullopt;
    const PixelRect part = around.intersection(*bounds);
    if (part.isEmpty()) return std::nullopt;
    const auto pixels = readBackground(part);
    if (!pixels) return std::nullopt;
    const auto pictureOf = [&](const PixelRect& wanted) {
        Pixels picture{wanted.width, wanted.height, kOpaqueBlack};
        copyInto(picture, *pixels, part.x - wanted.x, part.y - wanted.y);
        return picture;
    };
    Background background{pictureOf(area), {}};
    for (const PixelRect& side : sidesOf(area))
        append(background.edge, pictureOf(side), side, place);
    return background;
}

std::optional<Pixels> Backdrop::readBackground(const PixelRect& area) {
    xcb_connection_t* connection = x11_.connection();
    // An invisible window: the server draws it into separate memory, with its parent's background.
    // It exists only during the reading, below all other windows.
    const xcb_window_t mirror = xcb_generate_id(connection);
    const std::uint32_t untouched[] = {kUntouched};
    const std::uint32_t parents[] = {XCB_BACK_PIXMAP_PARENT_RELATIVE};
    const std::uint32_t below[] = {XCB_STACK_MODE_BELOW};
    const xcb_rectangle_t box = boxOf(area);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, mirror, locker_, box.x, box.y, box.width,
                      box.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                      XCB_CW_BACK_PIXEL, untouched);
    xcb_composite_redirect_window(connection, mirror, XCB_COMPOSITE_REDIRECT_MANUAL);
    xcb_configure_window(connection, mirror, XCB_CONFIG_WINDOW_STACK_MODE, below);
    xcb_map_window(connection, mirror);
    xcb_change_window_attributes(connection, mirror, XCB_CW_BACK_PIXMAP, parents);
    xcb_clear_area(connection, false, mirror, 0, 0, 0, 0);
    auto picture = read(mirror, {0, 0, area.width, area.height}, nullptr);
    xcb_destroy_window(connection, mirror);
    x11_.flush();
    return picture;
}

// A picture of megabytes takes several milliseconds through the connection. For an edge the
// connection is faster.
std::optional<Pixels> Backdrop::read(xcb_drawable_t drawable, const PixelRect& area,
                                     const ServerMemory* lent) {
    const std::size_t length = static_cast<std::size_t>(area.width) *
                               static_cast<std::size_t>(area.height) * kBytesPerPixel;
    const bool isLarge = length > kMaxThroughConnection;
    const auto own = lent || !isLarge ? nullptr : ServerMemory::make(x11_.connection(), length);
    const ServerMemory* const memory = lent ? lent : own.get();
    if (!memory) return readThroughConnection(drawable, area);
    const xcb_rectangle_t box = boxOf(area);
    const auto reply =
        xcbReply(xcb_shm_get_image_reply, x11_.connection(),
                 xcb_shm_get_image(x11_.connection(), drawable, box.x, box.y, box.width, box.height,
                                   kEveryPlane, XCB_IMAGE_FORMAT_Z_PIXMAP, memory->segment(), 0));
    if (!reply || reply->size < length) return std::nullopt;
    return opaque(area, memory->data());
}

std::optional<Pixels> Backdrop::readThroughConnection(xcb_drawable_t drawable,
                                                      const PixelRect& area) {
    xcb_connection_t* connection = x11_.connection();
    const xcb_rectangle_t box = boxOf(area);
    const auto reply = xcbReply(xcb_get_image_reply, connection,
                                xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable,
                                              box.x, box.y, box.width, box.height, kEveryPlane));
    if (!reply ||
        xcb_get_image_data_length(reply.get()) / kBytesPerPixel < area.width * area.height)
        return std::nullopt;
    return opaque(area, xcb_get_image_data(reply.get()));
}

bool Backdrop::hasComposite() {
    xcb_connection_t* connection = x11_.connection();
    return presentExtension(connection, xcb_composite_id) &&
           xcbReply(xcb_composite_query_version_reply, connection,
                    xcb_composite_query_version(connection, 0, 4));
}

}  // namespace quorvane
