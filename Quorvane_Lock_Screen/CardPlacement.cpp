#include "Quorvane_Lock_Screen/CardPlacement.hpp"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quorvane::CardPlacement {
namespace {

constexpr double kTopShare = 0.3;  // of the screen's height, above the card
// Distances between the card and an area to keep clear, widest first. At the first, the shadow ends
// before the area begins.
constexpr double kMargins[] = {kCardShadowMargin, 24, 12, 8};
constexpr double kScreenEdge = 8;  // a moved card keeps this distance from the screen's edges
constexpr double kScales[] = {1, 0.95, 0.9, 0.85, 0.8};

bool isClear(const Rect& card, double margin, std::span<const Rect> keepClear) {
    const Rect reach = card.grownBy(margin);
    return std::ranges::none_of(keepClear,
                                [&](const Rect& area) { return reach.intersects(area); });
}

bool isInside(const Rect& card, const Rect& screen) {
    const Rect room = screen.grownBy(-kScreenEdge);
    return card.minX() >= room.minX() && card.maxX() <= room.maxX() && card.minY() >= room.minY() &&
           card.maxY() <= room.maxY();
}

enum class Axis { upright, level };

// The places beside the areas along one axis: first those above (or to the right of) the card, then
// those below (or to the left), each nearest first.
std::vector<Rect> placesBeside(const Rect& card, Axis axis, double margin,
                               std::span<const Rect> keepClear) {
    std::vector<double> offsets;
    for (const Rect& area : keepClear) {
        const Rect reach = area.grownBy(margin);
        const bool isUpright = axis == Axis::upright;
        const double ahead = isUpright ? reach.maxY() - card.minY() : reach.maxX() - card.minX();
        const double behind = isUpright ? reach.minY() - card.maxY() : reach.minX() - card.maxX();
        if (ahead > 0) offsets.push_back(std::ceil(ahead));
        if (behind < 0) offsets.push_back(std::floor(behind));
    }
    std::ranges::sort(offsets, [](double one, double other) {
        return (one > 0) != (other > 0) ? one > 0 : std::abs(one) < std::abs(other);
    });
    std::vector<Rect> places;
    for (const double offset : offsets)
        places.push_back(axis == Axis::upright ? card.movedBy(0, offset) : card.movedBy(offset, 0));
    return places;
}

std::optional<Rect> clearPlace(const Rect& card, const Rect& screen,
                               std::span<const Rect> keepClear) {
    for (const Axis axis : {Axis::upright, Axis::level})
        for (const double margin : kMargins) {
            if (isClear(card, margin, keepClear)) return card;
            for (const Rect& place : placesBeside(card, axis, margin, keepClear))
                if (isInside(place, screen) && isClear(place, margin, keepClear)) return place;
        }
    return std::nullopt;
}

// The card at the default place.
Rect cardOn(const Rect& screen, double scale) {
    const Size size{scale * kCardSize.width, scale * kCardSize.height};
    const double top = screen.maxY() - kTopShare * screen.height;
    return {std::round(screen.midX() - 0.5 * size.width), std::round(top - size.height), size.width,
            size.height};
}

}  // namespace

Rect windowFrame(const Rect& screen) { return cardOn(screen, 1).grownBy(kCardShadowMargin); }

std::optional<CardPlace> place(const Rect& screen, std::span<const Rect> keepClear) {
    for (const double scale : kScales)
        if (const auto card = clearPlace(cardOn(screen, scale), screen, keepClear))
            return CardPlace{card->grownBy(scale * kCardShadowMargin), scale};
    return std::nullopt;
}

}  // namespace quorvane::CardPlacement
