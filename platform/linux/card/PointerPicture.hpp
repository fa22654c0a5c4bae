// The arrow that a card draws where the locker hides the pointer.
#pragma once

#include <cairo.h>

#include "drawing/Geometry.hpp"

namespace quorvane {

// `tip` is in the context's units, `scale` those a point.
void drawPointer(cairo_t* cairo, Point tip, double scale, double alpha);
// What it covers when its tip is there, in points.
Rect pointerArea(Point tip);

}  // namespace quorvane
