// Puts the letters of a laid-out line on a picture.
#pragma once

#include <cairo.h>

#include "platform/linux/drawing/TextLayouts.hpp"

namespace quorvane {

// With the context's source, the line's left end and baseline at `start`. Letters stand exactly
// where they were laid out, between pixels too.
void fillLine(cairo_t* cairo, const TextLine& line, Point start);

// Whether letters of it may have colours of their own, as emoji have.
bool hasColors(const TextLine& line);

}  // namespace quorvane
