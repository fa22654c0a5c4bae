// The card's outline: straight edges and corners whose curvature grows and falls steadily, as wide
// as circles of the stated radius but without their sudden start.
#pragma once

#include <limits>

#include "drawing/Geometry.hpp"

namespace quorvane {

// Coordinates inside the card in points, origin at its top left.
class CardShape {
public:
    CardShape(Size card, double cornerRadius);

    // About how far a point lies outside the outline; negative inside. Where that is more than
    // `limit` either way it may be any number beyond it: a corner's curve costs much.
    double distance(Point point, double limit = std::numeric_limits<double>::infinity()) const;
    bool contains(Point point) const { return distance(point) < 0; }

private:
    Size card_;
    double reach_;  // how far a corner reaches along its edges
};

}  // namespace quorvane
