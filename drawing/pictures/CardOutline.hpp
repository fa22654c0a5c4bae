// The card's shape in whole pixels, for a window that shows nothing but the card.
#pragma once

#include <vector>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// The pixels of the stage whose middle is inside the card, in bands from top to bottom. While the
// card moves, those inside both its place at rest and the moved one: an entrance then uncovers no
// pixel that it has covered before. Pure.
std::vector<PixelRect> cardOutline(const CardStyle& style, double scale,
                                   const Transform& transform);

}  // namespace quorvane
