// The drawing of one line of text.
#pragma once

#include "drawing/Scene.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

class TextLayoutCache;

// The letters of a line as pixels, because drawing letters takes far longer than copying their
// pixels to where the line is now.
struct LinePixels {
    double scale = 0;  // pixels per point
    Color color{};     // opaque; of letters without their own colours
    PixelRect ink{};   // from the line's left edge and baseline
    // The letters' coverage; their premultiplied colours if some letters, such as emoji, have
    // colours. Null for a line without ink.
    CairoSurface surface{};
};

// The part of the frame that the letters may cover, at any place of the line.
Rect inkOf(const TextNode& node, double scale, TextLayoutCache& texts);

// The context is scaled and moved, but not rotated.
void drawText(cairo_t* cairo, const TextNode& node, bool isRightToLeft, TextLayoutCache& texts);

}  // namespace quorvane
