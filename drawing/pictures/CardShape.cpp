#include "drawing/pictures/CardShape.hpp"

#include <algorithm>
#include <cmath>
#include <ranges>

namespace quorvane {
namespace {

// A corner is a quarter of |x|^n + |y|^n = reach^n. With these two constants its tip lies where the
// circle's would.
constexpr double kExponent = 2.4;
constexpr double kReachOfRadius = 1.18;
// 2 to the power of 1 / kExponent - 1 / 2: the curve and the circle differ most on the diagonal.
constexpr double kCurveOfCircle = 0.9438;

Point beforeMove(Point moved, const Transform& transform) {
    const auto back = [&](double value, double centre, double offset) {
        return centre + (value - centre - offset) / transform.scale;
    };
    return {back(moved.x, transform.centre.x, transform.offset.x),
            back(moved.y, transform.centre.y, transform.offset.y)};
}

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

std::vector<PixelRect> cardOutline(const CardStyle& style, double scale,
                                   const Transform& transform) {
    const CardShape shape{style.card, style.cornerRadius};
    const auto isInside = [&](Point stage) {
        return shape.contains({stage.x - style.shadowMargin, stage.y - style.shadowMargin});
    };
    const auto isCovered = [&](int x, int y) {
        const Point stage{(x + 0.5) / scale, (y + 0.5) / scale};
        return isInside(stage) && isInside(beforeMove(stage, transform));
    };
    const auto pixels = [&](double points) { return static_cast<int>(points * scale); };
    const int width = pixels(style.card.width + 2 * style.shadowMargin);
    const int height = pixels(style.card.height + 2 * style.shadowMargin);
    std::vector<PixelRect> bands;
    for (int y = 0; y < height; ++y) {
        // The card is convex, so each row of it is one run through the middle.
        const int middle = width / 2;
        if (!isCovered(middle, y)) continue;
        const int left = *std::ranges::partition_point(std::views::iota(0, middle),
                                                       [&](int x) { return !isCovered(x, y); });
        const int end = *std::ranges::partition_point(std::views::iota(middle, width),
                                                      [&](int x) { return isCovered(x, y); });
        if (!bands.empty() && bands.back().x == left && bands.back().maxX() == end)
            ++bands.back().height;
        else
            bands.push_back({left, y, end - left, 1});
    }
    return bands;
}

}  // namespace quorvane
