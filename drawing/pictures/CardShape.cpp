#include "drawing/pictures/CardShape.hpp"

#include <algorithm>
#include <cmath>

namespace quorvane {
namespace {

// A corner is a quarter of |x|^n + |y|^n = reach^n. With these two constants its tip lies where the
// circle's would.
constexpr double kExponent = 2.4;
constexpr double kReachOfRadius = 1.18;
// 2 to the power of 1 / kExponent - 1 / 2: the curve and the circle differ most on the diagonal.
constexpr double kCurveOfCircle = 0.9438;

}  // namespace

CardShape::CardShape(Size card, double cornerRadius)
    : card_(card),
      reach_(std::min(cornerRadius * kReachOfRadius, std::min(card.width, card.height) / 2)) {}

double CardShape::distance(Point point, double limit) const {
    // Folded into one quarter, measured from the inner end of the corner.
    const double x = std::abs(point.x - card_.width / 2) - card_.width / 2 + reach_;
    const double y = std::abs(point.y - card_.height / 2) - card_.height / 2 + reach_;
    if (x <= 0 || y <= 0) return std::max(x, y) - reach_;
    // The curve through the point lies inside the circle through it, smaller by kCurveOfCircle at
    // most.
    const double circle = std::hypot(x, y);
    if (circle - reach_ < -limit || circle * kCurveOfCircle - reach_ > limit)
        return circle - reach_;
    const double sum = std::pow(x, kExponent) + std::pow(y, kExponent);
    const double norm = std::pow(sum, 1 / kExponent);
    // Away from the axes the norm grows more slowly than the distance; dividing by its slope
    // corrects this.
    const double slope =
        std::hypot(std::pow(x / norm, kExponent - 1), std::pow(y / norm, kExponent - 1));
    return (norm - reach_) / slope;
}

}  // namespace quorvane
