// The letters of a line as coverage, to be mixed into pixels in any colour at any place: far fewer
// bytes to go through than a picture of them.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "drawing/Scene.hpp"
#include "platform/linux/TextLayouts.hpp"

namespace quorvane {

// Pixels are mixed in blocks, so rows of them have this many more than are to be seen.
inline constexpr int kMixedAtOnce = 16;

class LineCoverage {
public:
    // Of a line at this many pixels a point. Nothing for one with letters that have colours of
    // their own, such as emoji, or without any ink.
    static std::optional<LineCoverage> make(const TextLine& line, double scale);

    // Rows with ink, from the baseline downward; above it they are negative.
    int top() const { return top_; }
    int bottom() const { return top_ + rows_; }

    // Mixes `color` (0xffRRGGBB) into a row of opaque pixels, `y` rows below the baseline, the
    // line's left edge at `x` of it. `strengths` has as many columns as `pixels`, 256 each at full
    // strength.
    void mixInto(std::span<std::uint32_t> pixels, std::span<const std::uint16_t> strengths,
                 std::uint32_t color, int x, int y) const;

private:
    LineCoverage() = default;

    int top_ = 0;
    int rows_ = 0;
    int left_ = 0;     // columns before the line's left edge
    int columns_ = 0;  // then follow empty ones
    std::vector<std::uint8_t> values_;
};

}  // namespace quorvane
