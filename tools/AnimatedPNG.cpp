#include "tools/AnimatedPNG.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace quorvane {
namespace {

void appendBytes(Bytes& bytes, ByteView more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void appendNumber(Bytes& bytes, std::uint32_t number, int length) {
    for (int shift = 8 * (length - 1); shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::byte>(number >> shift & 0xff));
}

std::uint32_t numberAt(ByteView bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (const std::byte byte : bytes.subspan(place, 4))
        number = number << 8 | std::to_integer<std::uint32_t>(byte);
    return number;
}

std::uint32_t checksum(ByteView bytes) {
    std::uint32_t rest = 0xffffffff;
    for (const std::byte byte : bytes) {
        rest ^= std::to_integer<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit) rest = rest >> 1 ^ ((rest & 1) != 0 ? 0xedb88320 : 0);
    }
    return ~rest;
}

void appendChunk(Bytes& file, std::string_view type, ByteView content) {
    Bytes checked = copyOf(bytesOf(type));
    appendBytes(checked, content);
    appendNumber(file, static_cast<std::uint32_t>(content.size()), 4);
    appendBytes(file, checked);
    appendNumber(file, checksum(checked), 4);
}

constexpr std::size_t kSignatureLength = 8;

// Calls `visit` with the type and content of each chunk of a PNG file written by Cairo.
template <typename Visit>
void forEachChunk(ByteView file, const Visit& visit) {
    constexpr std::size_t kFrame = 12;  // length, type and checksum around the content
    for (std::size_t place = kSignatureLength; place + kFrame <= file.size();) {
        const std::size_t length = numberAt(file, place);
        visit(textOf(file.subspan(place + 4, 4)), file.subspan(place + 8, length));
        place += length + kFrame;
    }
}

struct Area {
    int left, top, right, bottom;
};

const std::uint32_t* rowOf(cairo_surface_t* surface, int y) {
    return reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface) +
                                                  std::ptrdiff_t{y} *
                                                      cairo_image_surface_get_stride(surface));
}

// The area in which two pictures of the same size differ; empty when they are equal.
Area difference(cairo_surface_t* a, cairo_surface_t* b) {
    const int width = cairo_image_surface_get_width(a);
    const int height = cairo_image_surface_get_height(a);
    Area area{width, height, 0, 0};
    for (int y = 0; y < height; ++y) {
        const std::uint32_t* const first = rowOf(a, y);
        const std::uint32_t* const second = rowOf(b, y);
        const auto left =
            static_cast<int>(std::mismatch(first, first + width, second).first - first);
        if (left == width) continue;
        int right = width;
        while (first[right - 1] == second[right - 1]) --right;
        area = {std::min(area.left, left), std::min(area.top, y), std::max(area.right, right),
                y + 1};
    }
    return area;
}

}  // namespace

Bytes encodePNG(cairo_surface_t* picture) {
    Bytes bytes;
    cairo_surface_write_to_png_stream(
        picture,
        [](void* target, const unsigned char* data, unsigned int length) {
            appendBytes(*static_cast<Bytes*>(target), std::as_bytes(std::span{data, length}));
            return CAIRO_STATUS_SUCCESS;
        },
        &bytes);
    return bytes;
}

void AnimatedPNG::add(CairoSurface frame) {
    Area area{0, 0, cairo_image_surface_get_width(frame.get()),
              cairo_image_surface_get_height(frame.get())};
    if (last_) area = difference(last_.get(), frame.get());
    if (area.left >= area.right) {
        ++frames_.back().count;
        return;
    }
    const int width = area.right - area.left;
    const int height = area.bottom - area.top;
    const CairoSurface part{
        cairo_image_surface_create(cairo_image_surface_get_format(frame.get()), width, height)};
    const CairoContext cairo{cairo_create(part.get())};
    cairo_set_source_surface(cairo.get(), frame.get(), -area.left, -area.top);
    cairo_paint(cairo.get());
    frames_.push_back({area.left, area.top, width, height, 1, encodePNG(part.get())});
    last_ = std::move(frame);
}

void AnimatedPNG::keepLastAsStill() {
    if (last_) still_ = encodePNG(last_.get());
}

Bytes AnimatedPNG::finish() const {
    Bytes file;
    if (frames_.empty()) return file;
    appendBytes(file, ByteView{frames_.front().png}.first(kSignatureLength));
    forEachChunk(frames_.front().png, [&](std::string_view type, ByteView content) {
        if (type == "IHDR") appendChunk(file, type, content);
    });
    Bytes control;
    appendNumber(control, static_cast<std::uint32_t>(frames_.size()), 4);
    appendNumber(control, 0, 4);  // plays: without end
    appendChunk(file, "acTL", control);
    // Image data before the first frame's control chunk is not part of the animation.
    forEachChunk(still_, [&](std::string_view type, ByteView content) {
        if (type == "IDAT") appendChunk(file, type, content);
    });

    std::uint32_t sequence = 0;
    for (const Frame& frame : frames_) {
        Bytes head;
        appendNumber(head, sequence++, 4);
        for (const int length : {frame.width, frame.height, frame.x, frame.y})
            appendNumber(head, static_cast<std::uint32_t>(length), 4);
        appendNumber(head,
                     static_cast<std::uint32_t>(std::lround(frame.count * 1000 / framesPerSecond_)),
                     2);
        appendNumber(head, 1000, 2);  // units a second
        appendNumber(head, 0, 2);     // keep the frame, replace its area
        appendChunk(file, "fcTL", head);
        forEachChunk(frame.png, [&](std::string_view type, ByteView content) {
            if (type != "IDAT") return;
            if (still_.empty() && &frame == &frames_.front())
                return appendChunk(file, type, content);
            Bytes numbered;
            appendNumber(numbered, sequence++, 4);
            appendBytes(numbered, content);
            appendChunk(file, "fdAT", numbered);
        });
    }
    appendChunk(file, "IEND", {});
    return file;
}

}  // namespace quorvane
