// Filled bar with round ends, for progress and volume. The fill begins at the leading edge.
#pragma once

#include "drawing/Scene.hpp"

namespace quorvane {

void drawFilledTrack(Scene& scene, const Rect& track, double filledWidth, double fillOpacity);

}  // namespace quorvane
