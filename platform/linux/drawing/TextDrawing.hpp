// The drawing of one line of text.
#pragma once

#include <cairo.h>

#include "drawing/Scene.hpp"
#include "platform/linux/drawing/TextLayouts.hpp"

namespace quorvane {

void drawText(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayouts& texts);

}  // namespace quorvane
