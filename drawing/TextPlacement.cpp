#include "drawing/TextPlacement.hpp"

#include <algorithm>
#include <cmath>

namespace quorvane {
namespace {

bool isAlignedLeft(const TextNode& node, bool isRightToLeft) {
    return (node.alignment == TextAlignment::leading) != isRightToLeft;
}

// The direction in which it scrolls: -1 is left.
double directionOf(const TextNode& node, bool isRightToLeft) {
    return isAlignedLeft(node, isRightToLeft) ? -1 : 1;
}

double riseAt(double t) {
    const double rise = t * t * (3 - 2 * t);
    return rise * rise;
}

}  // namespace

double baselineOf(const Rect& frame, const LineHeights& heights) {
    return frame.midY() + (heights.ascent - heights.descent) / 2;
}

double leftEdgeOf(const TextNode& node, double width, bool isRightToLeft) {
    const double room = node.frame.width - width;
    if (node.alignment == TextAlignment::center) return node.frame.x + room / 2;
    return node.frame.x + (isAlignedLeft(node, isRightToLeft) ? 0 : room);
}

bool isTooWide(const TextNode& node, double width) {
    constexpr double kTolerance = 0.5;
    return width > node.frame.width + kTolerance;
}

std::vector<double> copiesOf(const TextNode& node, double rest, double width, bool isRightToLeft) {
    std::vector<double> edges;
    const double distance = width + node.scroll->gap;
    if (distance <= 0) return edges;
    const double direction = directionOf(node, isRightToLeft);
    for (double moved = node.scroll->offset; moved > -node.frame.width; moved -= distance) {
        const double left = rest + direction * moved;
        if (left < node.frame.maxX() && left + width > node.frame.x) edges.push_back(left);
    }
    return edges;
}

MovedLine movedLine(const TextNode& node, double width, bool isRightToLeft) {
    const double direction = directionOf(node, isRightToLeft);
    const double distance = direction * (width + node.scroll->gap);
    const double left = leftEdgeOf(node, width, isRightToLeft) + direction * node.scroll->offset;
    const Rect area{std::min(left, left - distance), node.frame.y, width + std::abs(distance),
                    node.frame.height};
    return {left, left - distance, area, distance};
}

std::array<FadeStop, 12> fadeStops(const TextNode& node) {
    const double share = std::min(node.scroll->fade / node.frame.width, 0.5);
    std::array<FadeStop, 12> stops;
    for (std::size_t i = 0; i < 6; ++i) {
        const double t = static_cast<double>(i) / 5;
        stops[i] = {share * t, riseAt(t)};
        stops[11 - i] = {1 - share * t, riseAt(t)};
    }
    return stops;
}

double fadeStrength(const TextNode& node, double x) {
    const double width = std::min(node.scroll->fade, node.frame.width / 2);
    const double distance = std::min(x, node.frame.width - x);
    return distance >= width ? 1 : riseAt(std::max(0.0, distance) / width);
}

}  // namespace quorvane
