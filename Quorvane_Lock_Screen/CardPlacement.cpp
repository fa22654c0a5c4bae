#include "Quorvane_Lock_Screen/CardPlacement.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorvane::CardPlacement {
namespace {

// From the widest to the narrowest distance between the card and what it must not cover. At the
// first, the shadow ends before the area begins.
constexpr double kMargins[] = {kCardShadowMargin, 24, 12};
constexpr double kScreenEdge = 12;  // a moved card keeps this distance from the screen's edges

Rect cardIn(const Rect& window) { return window.grownBy(-kCardShadowMargin); }

bool isClear(const Rect& card, double margin, std::span<const Rect> keepClear) {
    const Rect reach = card.grownBy(margin);
    return std::ranges::none_of(keepClear,
                                [&](const Rect& area) { return reach.intersects(area); });
}

bool isInside(const Rect& card, const Rect& screen) {
    return card.minY() >= screen.minY() + kScreenEdge && card.maxY() <= screen.maxY() - kScreenEdge;
}

// The nearest clear place above the stated one, else the nearest below; y of the card's lower edge.
std::optional<double> clearY(const Rect& card, const Rect& screen, double margin,
                             std::span<const Rect> keepClear) {
    std::vector<double> above;
    std::vector<double> below;
    for (const Rect& area : keepClear) {
        above.push_back(std::ceil(area.maxY() + margin));
        below.push_back(std::floor(area.minY() - margin - card.height));
    }
    std::ranges::sort(above);
    std::ranges::sort(below, std::greater{});
    const auto fits = [&](double y) {
        const Rect moved{card.x, y, card.width, card.height};
        return isInside(moved, screen) && isClear(moved, margin, keepClear);
    };
    for (const double y : above)
        if (y > card.y && fits(y)) return y;
    for (const double y : below)
        if (y < card.y && fits(y)) return y;
    return std::nullopt;
}

}  // namespace

Rect windowFrame(const Rect& screen) {
    const double top = screen.maxY() - 0.3 * screen.height;
    const Rect card{std::round(screen.midX() - 0.5 * kCardSize.width),
                    std::round(top - kCardSize.height), kCardSize.width, kCardSize.height};
    return card.grownBy(kCardShadowMargin);
}

std::optional<Rect> windowFrame(const Rect& screen, std::span<const Rect> keepClear) {
    const Rect stated = windowFrame(screen);
    const Rect card = cardIn(stated);
    for (const double margin : kMargins) {
        if (isClear(card, margin, keepClear)) return stated;
        if (const auto y = clearY(card, screen, margin, keepClear))
            return stated.movedBy(0, *y - card.y);
    }
    return std::nullopt;
}

}  // namespace quorvane::CardPlacement
