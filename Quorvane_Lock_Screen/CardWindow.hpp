// The settings of a card's window: borderless, above all other windows, never key or main, so that
// the lock screen keeps the keyboard.
#pragma once

#include "drawing/CardWindows.hpp"

namespace quorvane::CardWindow {

// The frame is in global points, y growing upward.
WindowSettings settings(const Rect& frame, double contentScale = 1);

}  // namespace quorvane::CardWindow
