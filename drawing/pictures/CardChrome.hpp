// Everything of a card but its content: the glass with its light edge, and the shadow around it.
#pragma once

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// `backdrop` is what stands behind the stage, one value a pixel. The result has the same size, is
// opaque inside the card and clear but for the shadow outside; the shadow shows only there. Pure.
Pixels makeCardChrome(const Pixels& backdrop, const CardStyle& style, double scale);

}  // namespace quorvane
