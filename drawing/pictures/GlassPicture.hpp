// The card's glass as a low-resolution picture.
#pragma once

#include <cstdint>

#include "drawing/pictures/Blur.hpp"

namespace quorvane {

// One value per square of pixels; screen-encoded colours, 0 to 1. Pixels are interpolated between
// values, which suffices because the glass is soft.
struct GlassPicture {
    int step = 1;       // pixels per value, in width and height
    float opacity = 1;  // below 1, what is behind the card shows through
    Plane red;
    Plane green;
    Plane blue;

    // The opaque pixels of one row from `begin` up to `end`. Colours between two shades are
    // dithered, because wide soft areas would otherwise show bands.
    void readRow(int y, int begin, int end, std::uint32_t* pixels) const;
};

}  // namespace quorvane
