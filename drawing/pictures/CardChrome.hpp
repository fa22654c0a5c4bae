// The card without its content: the glass with its light edge, and the shadow around it.
#pragma once

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// `backdrop` holds the pixels behind the stage. The result has the same size. It is opaque inside
// the card and, apart from the shadow, transparent outside; the shadow is only outside. Pure.
Pixels makeCardChrome(const Pixels& backdrop, const CardStyle& style, double scale);
// The chrome of this many pixels over a picture that cannot be read: its glass is tinted.
Pixels makeTintedCardChrome(int width, int height, const CardStyle& style, double scale);

}  // namespace quorvane
