// The card's material: the locker's picture behind it, blurred and darkened as far as white text
// needs it. Pure functions.
#pragma once

#include <cstdint>

#include "drawing/pictures/GlassPicture.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// Brightness as the eye weighs it, 0 to 1, of a pixel in the screen's usual colour space.
double relativeLuminance(std::uint32_t pixel);
// How well white text of this opacity stands out from a pixel, 1 to 21.
double contrastWithWhite(std::uint32_t pixel, double opacity = 1);

// `card` is the part of the backdrop, in its pixels, that the glass will cover. Down to
// `textBottom` points below its top, each pixel gives the card's quietest text a contrast of at
// least 4.5. Further down the glass is lighter, with at least 3 for plain white and the volume's
// fill.
GlassPicture makeGlass(const Pixels& backdrop, const PixelRect& card, double textBottom,
                       double scale);

}  // namespace quorvane
