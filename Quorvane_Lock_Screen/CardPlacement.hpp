// Where a card's window stands on its screen. Pure functions of plain values.
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

// The same, moved out of the areas that the lock screen needs for itself: upward if there is room,
// else downward, with as calm a margin as the screen allows. Nothing when the card fits nowhere on
// the middle axis.
std::optional<Rect> windowFrame(const Rect& screen, std::span<const Rect> keepClear);

}  // namespace CardPlacement
}  // namespace quorvane
