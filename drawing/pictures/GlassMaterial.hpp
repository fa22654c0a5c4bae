// The card's glass: the locker's picture behind it, blurred and darkened as far as white text
// needs. Pure functions.
#pragma once

#include "drawing/pictures/GlassPicture.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// The opacity of a black tint that is just dark enough for the card's faintest text on white.
double darkTintOpacity();

// `card` is the part of the backdrop, in its pixels, that the glass will cover. Down to
// `textBottom` points below its top, the card's faintest text has a contrast of at least 4.5 on
// each pixel. Further down the glass is lighter; plain white and the volume's fill have at least 3.
GlassPicture makeGlass(const Pixels& backdrop, const PixelRect& card, double textBottom,
                       double scale);

// The glass over a picture that cannot be read: a dark tint that lets some of the picture through,
// with light from above. The card's faintest text has a contrast of at least 4.5 over any picture.
// `picture` is the size of the chrome in pixels.
GlassPicture makeTintedGlass(const PixelRect& picture, const PixelRect& card, double scale);

}  // namespace quorvane
