#include "drawing/pictures/CardOutline.hpp"

#include <algorithm>
#include <ranges>

#include "drawing/pictures/CardShape.hpp"

namespace quorvane {
namespace {

Point beforeMove(Point moved, const Transform& transform) {
    const auto back = [&](double value, double centre, double offset) {
        return centre + (value - centre - offset) / transform.scale;
    };
    return {back(moved.x, transform.centre.x, transform.offset.x),
            back(moved.y, transform.centre.y, transform.offset.y)};
}

}  // namespace

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
