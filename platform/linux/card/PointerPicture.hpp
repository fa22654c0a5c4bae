// The arrow that a card draws where the locker hides the pointer.
#pragma once

#include <cairo.h>

#include "drawing/Geometry.hpp"

namespace quorvane {

// `tip` is in the context's units; `scale` is units per point.
void drawPointer(cairo_t* cairo, Point tip, double scale, double alpha);
// The area it covers with its tip there, in points.
Rect pointerArea(Point tip);

}  // namespace quorvane
