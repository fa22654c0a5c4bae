// The letters of a line as a coverage mask that can be blended into pixels in any colour at any
// place. It has far fewer bytes than a picture.
#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {

// Pixels are blended in blocks, so rows have this many more pixels than are visible.
inline constexpr int kMixedAtOnce = 16;

class GlyphCoverage {
public:
    // The coverage of a line at this many pixels per point; the line caches the last one. Returns
    // null for a line with coloured letters such as emoji, without ink, or too long to cache.
    static std::shared_ptr<const GlyphCoverage> of(const TextLine& line, double scale);

    // Rows with ink, counted downward from the baseline; rows above it are negative.
    int top() const { return ink_.y; }
    int bottom() const { return ink_.maxY(); }

    // Paints the context's source through the letters. User space is in pixels; the line's left
    // edge and baseline are at `x` and `y`.
    void show(cairo_t* cairo, int x, int y) const;

    // Blends `color` (0xffRRGGBB) into a row of opaque pixels, `y` rows below the baseline, with
    // the line's left edge at column `x`. `strengths` has one value per pixel; 256 is full
    // strength.
    void mixInto(std::span<std::uint32_t> pixels, std::span<const std::uint16_t> strengths,
                 std::uint32_t color, int x, int y) const;

private:
    GlyphCoverage(double scale, const PixelRect& ink);
    static std::shared_ptr<const GlyphCoverage> make(const TextLine& line, double scale);
    std::uint8_t* row(int y) { return values_.data() + std::ptrdiff_t{y} * stride_; }
    const std::uint8_t* row(int y) const { return values_.data() + std::ptrdiff_t{y} * stride_; }

    double scale_;
    PixelRect ink_;  // from the line's left edge and baseline
    int stride_;     // the ink's columns and empty ones after them
    std::vector<std::uint8_t> values_;
};

}  // namespace quorvane
