// The Linux canvas: Cairo for shapes, Pango for text, gdk-pixbuf for pictures.
#pragma once

#include <memory>

#include "drawing/Canvas.hpp"
#include "platform/linux/drawing/PictureCache.hpp"
#include "platform/linux/drawing/SymbolMasks.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {

// Main thread only.
class CairoCanvas final : public Canvas {
public:
    // `scale` is the target's pixels per point. Canvases may share a picture cache; null creates a
    // private cache that decodes synchronously.
    explicit CairoCanvas(double scale, std::shared_ptr<PictureCache> pictures = nullptr,
                         std::string fontFamilies = TextLayoutCache::kSystemFont);

    // The context's user space is the scene's: points, with y growing downward. Draws only inside
    // the clip, and nothing outside a node's frame.
    void drawOn(cairo_t* cairo, const Scene& scene);

    // The surface that `draw` draws on, from its top left, at this canvas's scale.
    void setTarget(CairoSurface target) { target_ = std::move(target); }
    void draw(const Scene& scene) override;

    TextLayoutCache& texts() { return texts_; }

private:
    double scale_;
    std::shared_ptr<PictureCache> pictures_;
    TextLayoutCache texts_;
    SymbolMasks symbols_;
    CairoSurface target_;
};

}  // namespace quorvane
