// The drawing of a laid-out line's letters.
#pragma once

#include <cairo.h>

#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {

// Draws with the context's source; the line's left end and baseline are at `start`. Letters keep
// their exact layout positions, including fractions of a pixel.
void fillLine(cairo_t* cairo, const TextLine& line, Point start);

// Whether the line may have coloured letters, such as emoji.
bool hasColors(const TextLine& line);

}  // namespace quorvane
