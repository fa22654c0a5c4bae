// The Linux canvas: Cairo for shapes, Pango for text, gdk-pixbuf for pictures.
#pragma once

#include <memory>

#include "platform/linux/drawing/PictureCache.hpp"
#include "platform/linux/drawing/Symbols.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {

// Main thread only.
class CairoCanvas {
public:
    // `scale` is the target's pixels per point. Canvases may share a picture cache; null creates a
    // private cache that decodes synchronously.
    explicit CairoCanvas(double scale, std::shared_ptr<PictureCache> pictures = nullptr,
                         std::string fontFamilies = TextLayoutCache::kSystemFont);

    // The context's user space is the scene's: points, with y growing downward. Draws only inside
    // the clip, and nothing outside a node's frame.
    void drawOn(cairo_t* cairo, const Scene& scene);
    // The part of a text's frame that its letters may cover.
    Rect inkOf(const TextNode& text);

private:
    double scale_;
    std::shared_ptr<PictureCache> pictures_;
    TextLayoutCache texts_;
    Symbols symbols_;
};

}  // namespace quorvane
