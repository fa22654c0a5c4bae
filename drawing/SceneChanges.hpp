// The areas in which two scenes differ, so that only those are redrawn.
#pragma once

#include <functional>
#include <vector>

#include "drawing/Geometry.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

// The part of a text's frame that its letters may cover.
using InkOf = std::function<Rect(const TextNode&)>;

// Disjoint rectangles that together cover every place where the scenes may look different; empty
// when they look alike. Pure.
std::vector<Rect> changedAreas(const Scene& from, const Scene& to, const InkOf& inkOf = nullptr);

}  // namespace quorvane
