// The drawing of one line of text.
#pragma once

#include <cairo.h>

#include "drawing/Scene.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {

void drawText(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayoutCache& texts);

}  // namespace quorvane
