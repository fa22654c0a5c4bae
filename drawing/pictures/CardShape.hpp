// The card's outline: straight edges, and corners whose curvature grows and falls steadily. A
// corner's tip is where that of a circle of the stated radius would be.
#pragma once

#include <limits>
#include <vector>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// Coordinates inside the card in points, origin at its top left.
class CardShape {
public:
    CardShape(Size card, double cornerRadius);

    // The approximate distance of a point from the outline; negative inside. Beyond `limit` either
    // way the result may be any number beyond it, because the exact curve of a corner is costly.
    double distance(Point point, double limit = std::numeric_limits<double>::infinity()) const;
    bool contains(Point point) const { return distance(point) < 0; }

private:
    Size card_;
    double reach_;  // how far a corner reaches along its edges
};

// The pixels of the stage whose centre is inside the card, in bands from top to bottom, for a
// window that shows only the card. While the card moves, only the pixels inside both its resting
// and its moved place, so that an entrance uncovers no pixel that it has covered before. Pure.
std::vector<PixelRect> cardOutline(const CardStyle& style, double scale,
                                   const Transform& transform);

}  // namespace quorvane
