// The letters of a line as coverage, to be mixed into pixels in any colour at any place: far fewer
// bytes to go through than a picture of them.
#pragma once

#include <cairo.h>

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/drawing/TextLayouts.hpp"

namespace quorvane {

// Pixels are mixed in blocks, so rows of them have this many more than are to be seen.
inline constexpr int kMixedAtOnce = 16;

class LineCoverage {
public:
    // Of a line at this many pixels a point; the line keeps the last one. Null for one with letters
    // that have colours of their own, such as emoji, for one without any ink, and for one too long
    // to be kept.
    static std::shared_ptr<const LineCoverage> of(const TextLine& line, double scale);

    // Rows with ink, from the baseline downward; above it they are negative.
    int top() const { return ink_.y; }
    int bottom() const { return ink_.maxY(); }

    // Puts the context's source through the letters. Its user space is that of pixels; the line's
    // left edge and baseline are at `x` and `y` of it.
    void show(cairo_t* cairo, int x, int y) const;

    // Mixes `color` (0xffRRGGBB) into a row of opaque pixels, `y` rows below the baseline, the
    // line's left edge at `x` of it. `strengths` has as many columns as `pixels`, 256 each at full
    // strength.
    void mixInto(std::span<std::uint32_t> pixels, std::span<const std::uint16_t> strengths,
                 std::uint32_t color, int x, int y) const;

private:
    LineCoverage(double scale, const PixelRect& ink);
    static std::shared_ptr<const LineCoverage> make(const TextLine& line, double scale);
    std::uint8_t* row(int y) { return values_.data() + std::ptrdiff_t{y} * stride_; }
    const std::uint8_t* row(int y) const { return values_.data() + std::ptrdiff_t{y} * stride_; }

    double scale_;
    PixelRect ink_;  // from the line's left edge and baseline
    int stride_;     // after the ink's columns follow empty ones
    std::vector<std::uint8_t> values_;
};

}  // namespace quorvane
