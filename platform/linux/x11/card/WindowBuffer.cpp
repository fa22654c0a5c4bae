#include "platform/linux/x11/card/WindowBuffer.hpp"

#include <algorithm>
#include <new>
#include <utility>
#include <vector>

#include "platform/linux/x11/XcbReply.hpp"
#include "platform/linux/x11/card/CardRequests.hpp"

namespace quorvane {

std::unique_ptr<WindowBuffer> WindowBuffer::make(xcb_connection_t* connection, xcb_window_t window,
                                                 int width, int height, std::uint8_t depth) {
    std::unique_ptr<WindowBuffer> buffer{
        new WindowBuffer{connection, window, width, height, depth}};
    if (!buffer->allocate()) return nullptr;
    buffer->surface_.reset(cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(buffer->memory_), CAIRO_FORMAT_ARGB32, width, height,
        width * kBytesPerPixel));
    if (cairo_surface_status(buffer->surface_.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
    return buffer;
}

WindowBuffer::WindowBuffer(xcb_connection_t* connection, xcb_window_t window, int width, int height,
                           std::uint8_t depth)
    : connection_(connection),
      window_(window),
      width_(width),
      height_(height),
      depth_(depth),
      context_(xcb_generate_id(connection)) {
    constexpr std::uint32_t kNoExposures = 0;
    xcb_create_gc(connection_, context_, window_, XCB_GC_GRAPHICS_EXPOSURES, &kNoExposures);
}

WindowBuffer::~WindowBuffer() {
    surface_.reset();
    xcb_free_gc(connection_, context_);
}

bool WindowBuffer::allocate() {
    const std::size_t size = static_cast<std::size_t>(width_ * height_) * kBytesPerPixel;
    shared_ = ServerMemory::make(connection_, size);
    if (!shared_) own_.reset(new (std::nothrow) std::byte[size]());
    memory_ = shared_ ? shared_->data() : own_.get();
    return memory_ != nullptr;
}

void WindowBuffer::waitUntilRead() {
    // A reply means that all earlier requests are done. Waiting here, and not for a completion
    // event, lets the main loop sleep between two frames.
    if (std::exchange(isBeingRead_, false))
        xcbReply(xcb_get_input_focus_reply, connection_, xcb_get_input_focus(connection_));
}

void WindowBuffer::show(std::span<const PixelRect> parts) {
    cairo_surface_flush(surface_.get());
    for (const PixelRect& wanted : parts) {
        const PixelRect part = wanted.intersection(bounds());
        if (part.isEmpty()) continue;
        if (!shared_) {
            send(part);
            continue;
        }
        const xcb_rectangle_t whole = boxOf(bounds());
        const xcb_rectangle_t box = boxOf(part);
        xcb_shm_put_image(connection_, window_, context_, whole.width, whole.height,
                          static_cast<std::uint16_t>(box.x), static_cast<std::uint16_t>(box.y),
                          box.width, box.height, box.x, box.y, depth_, XCB_IMAGE_FORMAT_Z_PIXMAP,
                          false, shared_->segment(), 0);
        isBeingRead_ = true;
    }
}

// Sent in strips, because a request has a maximum length.
void WindowBuffer::send(const PixelRect& part) {
    const std::size_t longest = std::size_t{xcb_get_maximum_request_length(connection_)} * 4;
    const auto rowLength = static_cast<std::size_t>(part.width) * kBytesPerPixel;
    const int rows = std::max(1, static_cast<int>((longest - 64) / rowLength));
    std::vector<std::uint8_t> strip;
    for (int y = part.y; y < part.maxY(); y += rows) {
        const xcb_rectangle_t box = boxOf({part.x, y, part.width, std::min(rows, part.maxY() - y)});
        strip.clear();
        for (int line = y; line < y + box.height; ++line) {
            const auto* row =
                reinterpret_cast<const std::uint8_t*>(memory_) +
                (static_cast<std::ptrdiff_t>(line) * width_ + part.x) * kBytesPerPixel;
            strip.insert(strip.end(), row, row + rowLength);
        }
        xcb_put_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_, box.width,
                      box.height, box.x, box.y, 0, depth_, static_cast<std::uint32_t>(strip.size()),
                      strip.data());
    }
}

}  // namespace quorvane
