// The card's shape in whole pixels, for a window that shows only the card.
#pragma once

#include <vector>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// The pixels of the stage whose centre is inside the card, in bands from top to bottom. While the
// card moves, only the pixels inside both its resting and its moved place, so that an entrance
// uncovers no pixel that it has covered before. Pure.
std::vector<PixelRect> cardOutline(const CardStyle& style, double scale,
                                   const Transform& transform);

}  // namespace quorvane
