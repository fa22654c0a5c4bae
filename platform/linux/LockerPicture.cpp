#include "platform/linux/LockerPicture.hpp"

#include <xcb/composite.h>

#include "platform/linux/XcbReply.hpp"

namespace quorvane {
namespace {

constexpr std::uint32_t kEveryPlane = ~0U;
// Stays where the locker's window has no background at all, and is like nothing that one sees.
constexpr std::uint32_t kUntouched = 0xfd02fb;

Pixels opaque(const PixelRect& area, const void* values) {
    Pixels picture{area.width, area.height, static_cast<const std::uint32_t*>(values)};
    for (std::uint32_t& value : picture.values) value |= kOpaqueBlack;
    return picture;
}

}  // namespace

std::optional<Pixels> LockerPicture::visible(const PixelRect& area, const ServerMemory* lent) {
    // The server refuses to read what does not lie on the screen.
    const xcb_screen_t& screen = x11_.screen();
    const int left = static_cast<int>(locker_.frame.x);
    const int top = static_cast<int>(locker_.frame.y);
    const PixelRect window{0, 0, static_cast<int>(locker_.frame.width),
                           static_cast<int>(locker_.frame.height)};
    const PixelRect onScreen{-left, -top, screen.width_in_pixels, screen.height_in_pixels};
    const PixelRect readable = area.intersection(window).intersection(onScreen);
    if (readable == area) return read(locker_.window, area, lent);
    Pixels picture{area.width, area.height, kOpaqueBlack};
    if (readable.isEmpty()) return picture;
    const auto pixels = read(locker_.window, readable, lent);
    if (!pixels) return std::nullopt;
    copyInto(picture, *pixels, readable.x - area.x, readable.y - area.y);
    return picture;
}

std::optional<Pixels> LockerPicture::background(const PixelRect& area) {
    if (area.isEmpty() || !hasComposite()) return std::nullopt;
    xcb_connection_t* connection = x11_.connection();
    // A window that nobody sees: drawn by the server into memory of its own, with the background
    // of the window around it. It stands below all others for as long as the reading takes.
    const xcb_window_t mirror = xcb_generate_id(connection);
    const std::uint32_t untouched[] = {kUntouched};
    const std::uint32_t parents[] = {XCB_BACK_PIXMAP_PARENT_RELATIVE};
    const std::uint32_t below[] = {XCB_STACK_MODE_BELOW};
    const auto place = [](int value) { return static_cast<std::int16_t>(value); };
    const auto size = [](int value) { return static_cast<std::uint16_t>(value); };
    x11_.noteOwnWindow(mirror, true);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, mirror, locker_.window, place(area.x),
                      place(area.y), size(area.width), size(area.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXEL,
                      untouched);
    xcb_composite_redirect_window(connection, mirror, XCB_COMPOSITE_REDIRECT_MANUAL);
    xcb_configure_window(connection, mirror, XCB_CONFIG_WINDOW_STACK_MODE, below);
    xcb_map_window(connection, mirror);
    xcb_change_window_attributes(connection, mirror, XCB_CW_BACK_PIXMAP, parents);
    xcb_clear_area(connection, false, mirror, 0, 0, 0, 0);
    auto picture = read(mirror, {0, 0, area.width, area.height}, nullptr);
    xcb_destroy_window(connection, mirror);
    x11_.flush();
    x11_.noteOwnWindow(mirror, false);
    return picture;
}

// Megabytes, for which the connection would take several milliseconds.
std::optional<Pixels> LockerPicture::read(xcb_drawable_t drawable, const PixelRect& area,
                                          const ServerMemory* lent) {
    const std::size_t length =
        static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height) * kBytesAPixel;
    const auto own = lent ? nullptr : ServerMemory::make(x11_.connection(), length);
    const ServerMemory* const memory = lent ? lent : own.get();
    if (!memory) return readThroughConnection(drawable, area);
    const auto place = [](int value) { return static_cast<std::int16_t>(value); };
    const auto size = [](int value) { return static_cast<std::uint16_t>(value); };
    const auto reply =
        xcbReply(xcb_shm_get_image_reply, x11_.connection(),
                 xcb_shm_get_image(x11_.connection(), drawable, place(area.x), place(area.y),
                                   size(area.width), size(area.height), kEveryPlane,
                                   XCB_IMAGE_FORMAT_Z_PIXMAP, memory->segment(), 0));
    if (!reply || reply->size < length) return std::nullopt;
    return opaque(area, memory->data());
}

std::optional<Pixels> LockerPicture::readThroughConnection(xcb_drawable_t drawable,
                                                           const PixelRect& area) {
    xcb_connection_t* connection = x11_.connection();
    const auto reply =
        xcbReply(xcb_get_image_reply, connection,
                 xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable,
                               static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
                               static_cast<std::uint16_t>(area.width),
                               static_cast<std::uint16_t>(area.height), kEveryPlane));
    if (!reply || xcb_get_image_data_length(reply.get()) / kBytesAPixel < area.width * area.height)
        return std::nullopt;
    return opaque(area, xcb_get_image_data(reply.get()));
}

bool LockerPicture::hasComposite() {
    if (hasComposite_) return *hasComposite_;
    xcb_connection_t* connection = x11_.connection();
    const auto* extension = xcb_get_extension_data(connection, &xcb_composite_id);
    if (!extension || !extension->present) return *(hasComposite_ = false);
    const auto version = xcbReply(xcb_composite_query_version_reply, connection,
                                  xcb_composite_query_version(connection, 0, 4));
    return *(hasComposite_ = version != nullptr);
}

}  // namespace quorvane
