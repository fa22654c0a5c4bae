// Pictures in memory and whole-pixel rectangles.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    constexpr int maxX() const { return x + width; }
    constexpr int maxY() const { return y + height; }
    constexpr bool isEmpty() const { return width <= 0 || height <= 0; }
    constexpr bool contains(const PixelRect& other) const {
        return other.x >= x && other.y >= y && other.maxX() <= maxX() && other.maxY() <= maxY();
    }
    constexpr PixelRect movedBy(int dx, int dy) const { return {x + dx, y + dy, width, height}; }
    // Empty when they share no pixel.
    constexpr PixelRect intersection(const PixelRect& other) const {
        const int left = std::max(x, other.x);
        const int top = std::max(y, other.y);
        const PixelRect common{left, top, std::min(maxX(), other.maxX()) - left,
                               std::min(maxY(), other.maxY()) - top};
        return common.isEmpty() ? PixelRect{} : common;
    }
    constexpr bool operator==(const PixelRect&) const = default;
};

// Bytes per pixel of our pictures: one std::uint32_t each.
inline constexpr int kBytesPerPixel = 4;

constexpr PixelRect grownBy(const PixelRect& rect, int margin) {
    return {rect.x - margin, rect.y - margin, rect.width + 2 * margin, rect.height + 2 * margin};
}

// The whole pixels that a rectangle of pixels touches.
inline PixelRect pixelsTouchedBy(const Rect& rect) {
    const int left = static_cast<int>(std::floor(rect.minX()));
    const int top = static_cast<int>(std::floor(rect.minY()));
    return {left, top, static_cast<int>(std::ceil(rect.maxX())) - left,
            static_cast<int>(std::ceil(rect.maxY())) - top};
}

inline Rect scaledBy(const Rect& rect, double scale) {
    return {rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale};
}

// 0xAARRGGBB with the colours multiplied by alpha, rows from top to bottom without padding: the
// layout of both an X image of 24 or 32 bits and a Cairo image surface.
struct Pixels {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> values;

    Pixels() = default;
    Pixels(int columns, int rows, std::uint32_t value = 0)
        : width(columns),
          height(rows),
          values(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), value) {}

    // Copies the values.
    Pixels(int columns, int rows, const std::uint32_t* from)
        : width(columns),
          height(rows),
          values(from, from + static_cast<std::ptrdiff_t>(columns) * rows) {}

    std::uint32_t* row(int y) { return values.data() + static_cast<std::ptrdiff_t>(y) * width; }
    const std::uint32_t* row(int y) const {
        return values.data() + static_cast<std::ptrdiff_t>(y) * width;
    }
    std::uint32_t at(int x, int y) const { return row(y)[x]; }
    PixelRect bounds() const { return {0, 0, width, height}; }
    bool isEmpty() const { return values.empty(); }
    bool operator==(const Pixels&) const = default;
};

inline constexpr std::uint32_t kOpaqueBlack = 0xff000000;

// Sets the pixels in `area` to one value; ignores the part outside the picture.
inline void fill(Pixels& target, const PixelRect& area, std::uint32_t value) {
    const PixelRect place = area.intersection(target.bounds());
    for (int y = place.y; y < place.maxY(); ++y)
        std::fill_n(target.row(y) + place.x, place.width, value);
}

// Copies `source` with its top left to (x, y); ignores the part outside the target.
inline void copyInto(Pixels& target, const Pixels& source, int x, int y) {
    const PixelRect place = source.bounds().movedBy(x, y).intersection(target.bounds());
    for (int line = place.y; line < place.maxY(); ++line)
        std::copy_n(source.row(line - y) + (place.x - x), place.width, target.row(line) + place.x);
}

}  // namespace quorvane
