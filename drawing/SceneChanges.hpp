// Where two scenes look different, so that only that is drawn again.
#pragma once

#include <vector>

#include "drawing/Geometry.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// Rectangles that share no point and together hold every place at which the scenes may look
// different; none when they look alike. Pure.
std::vector<Rect> changedAreas(const Scene& from, const Scene& to);

}  // namespace quorvane
