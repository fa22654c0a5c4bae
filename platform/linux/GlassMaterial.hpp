// The card's material: the locker's picture behind it, blurred and darkened as far as white text
// needs it. Pure functions.
#pragma once

#include <cstdint>

#include "platform/linux/Blur.hpp"
#include "platform/linux/Pixels.hpp"

namespace quorvane {

// Brightness as the eye weighs it, 0 to 1, of a pixel in the screen's usual colour space.
double relativeLuminance(std::uint32_t pixel);
// How well white text of this opacity stands out from a pixel, 1 to 21.
double contrastWithWhite(std::uint32_t pixel, double opacity = 1);

// The material at a few points a value, colours as a screen takes them, 0 to 1. Soft as it is, it
// is sampled between its values.
struct GlassPicture {
    int step = 1;  // pixels of the backdrop a value
    Plane red;
    Plane green;
    Plane blue;

    // The opaque pixels of one row from `begin` up to `end`. Colours between two shades are
    // scattered over both, or wide soft areas would show bands.
    void readRow(int y, int begin, int end, std::uint32_t* pixels) const;
};

// `card` is the part of the backdrop, in its pixels, that the glass will cover. Every pixel there
// gives the card's quietest text a contrast of at least 4.5.
GlassPicture makeGlass(const Pixels& backdrop, const PixelRect& card, double scale);

}  // namespace quorvane
