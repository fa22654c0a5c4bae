// The card's material as a picture of few values.
#pragma once

#include <cstdint>

#include "drawing/pictures/Blur.hpp"

namespace quorvane {

// One value for a square of pixels, colours as a screen takes them, 0 to 1. Soft as it is, it is
// sampled between its values.
struct GlassPicture {
    int step = 1;  // pixels a value, in width and height
    Plane red;
    Plane green;
    Plane blue;

    // The opaque pixels of one row from `begin` up to `end`. Colours between two shades are
    // scattered over both, or wide soft areas would show bands.
    void readRow(int y, int begin, int end, std::uint32_t* pixels) const;
};

}  // namespace quorvane
