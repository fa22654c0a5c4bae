// The card's outline: straight edges, and corners whose curvature grows and falls steadily. The
// corners are as wide as circles of the stated radius, without their abrupt start.
#pragma once

#include <limits>

#include "drawing/Geometry.hpp"

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

}  // namespace quorvane
