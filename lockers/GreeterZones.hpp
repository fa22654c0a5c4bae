// The areas that KDE Plasma's lock screen on Wayland needs. The compositor does not report them,
// so they were measured on the lock screen. Pure values.
#pragma once

#include <vector>

#include "drawing/Screens.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// `output` and the zones are in logical pixels, y growing downward. `unit` is `greeterUnit`.
std::vector<Rect> greeterZones(const Rect& output, double unit);

// The screen of an output, with its zones. Points are logical pixels; y is flipped.
Screen screenOfOutput(const Rect& output, double scale, double unit);
// A frame's place on the screen's output, in whole logical pixels from its top left.
PixelRect placeOnOutput(const Rect& frame, const Screen& screen);

}  // namespace quorvane
