// The areas that lock screens on Wayland need. The compositor does not report them, so they were
// measured. Pure values.
#pragma once

#include <optional>
#include <vector>

#include "drawing/Screens.hpp"
#include "drawing/pictures/Pixels.hpp"

namespace quorvane {

// `output` and the zones are in logical pixels, y growing downward. `unit` is KDE Plasma's
// `greeterUnit`; nullopt for other lock screens.
std::vector<Rect> greeterZones(const Rect& output, std::optional<double> unit);

// The screen of an output, with its zones. Points are logical pixels; y is flipped.
Screen screenOfOutput(const Rect& output, double scale, std::optional<double> unit);
// A frame's place on the screen's output, in whole logical pixels from its top left.
PixelRect placeOnOutput(const Rect& frame, const Screen& screen);

}  // namespace quorvane
