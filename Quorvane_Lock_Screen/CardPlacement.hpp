// The place of a card's window on its screen. Pure functions of plain values.
#pragma once

#include <optional>
#include <span>

#include "drawing/Geometry.hpp"

namespace quorvane {

inline constexpr Size kCardSize{400, 222};
inline constexpr double kCardCornerRadius = 30;
inline constexpr double kCardShadowMargin = 52;

namespace CardPlacement {

// The stated place: centred across the screen, the card's top 0.3 of the screen's height below its
// top. The frame is the card grown by the shadow margin. Global points, y growing upward.
Rect windowFrame(const Rect& screen);

struct Place {
    Rect frame;        // of the window, scaled
    double scale = 1;  // of the whole card
    bool operator==(const Place&) const = default;
};

// The same, moved out of the areas that the lock screen needs for itself, with as wide a margin as
// the screen allows: upward if there is room, else downward, else to the right or left. A card that
// fits nowhere is made smaller, to 0.8 at least. Nullopt when that does not fit either.
std::optional<Place> place(const Rect& screen, std::span<const Rect> keepClear);

}  // namespace CardPlacement
}  // namespace quorvane
