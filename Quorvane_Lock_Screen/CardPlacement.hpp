// Position of a card's window on its screen. Pure functions of plain values.
#pragma once

#include <optional>
#include <span>

#include "AddOnKit/card/PlayerLayout.hpp"
#include "drawing/CardWindows.hpp"

namespace quorvane {

using PlayerLayout::kCardCornerRadius;
using PlayerLayout::kCardSize;
inline constexpr double kCardShadowMargin = 52;

namespace CardPlacement {

// The default place: centred across the screen, the card's top 0.3 of the screen's height below its
// top. The frame is the card grown by the shadow margin. Global points, y growing upward.
Rect windowFrame(const Rect& screen);

// The default place, moved out of the areas that the lock screen needs: up or down with the widest
// margin that fits, else right or left likewise. A card that fits nowhere is scaled down, to 0.8 at
// least. Returns nullopt when that does not fit either.
std::optional<CardPlace> place(const Rect& screen, std::span<const Rect> keepClear);

}  // namespace CardPlacement
}  // namespace quorvane
