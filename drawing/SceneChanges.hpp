// The areas in which two scenes differ, so that only those are redrawn.
#pragma once

#include <vector>

#include "drawing/Geometry.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// Disjoint rectangles that together cover every place where the scenes may look different; empty
// when they look alike. Pure.
std::vector<Rect> changedAreas(const Scene& from, const Scene& to);

}  // namespace quorvane
