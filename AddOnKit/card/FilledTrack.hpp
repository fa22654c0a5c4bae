// A bar with round ends that is filled from its leading edge: progress and volume.
#pragma once

#include "drawing/Scene.hpp"

namespace quorvane {

void drawFilledTrack(Scene& scene, const Rect& track, double filledWidth, double fillOpacity);

}  // namespace quorvane
