// The canvas of this edition: Cairo for shapes, Pango for text, gdk-pixbuf for pictures.
#pragma once

#include <memory>

#include "drawing/Canvas.hpp"
#include "platform/linux/drawing/PictureCache.hpp"
#include "platform/linux/drawing/SymbolMasks.hpp"
#include "platform/linux/drawing/TextLayouts.hpp"

namespace quorvane {

// Main thread only.
class CairoCanvas final : public Canvas {
public:
    // `scale` is the pixels a point of the target. Canvases may share their pictures; without any
    // they decode at once.
    explicit CairoCanvas(double scale, std::shared_ptr<PictureCache> pictures = nullptr,
                         std::string fontFamilies = TextLayouts::kSystemFont);

    // The context's user space is the scene's: points, with y growing downward. Only what its clip
    // lets through is drawn, and nothing outside a node's frame.
    void drawOn(cairo_t* cairo, const Scene& scene);

    // What `draw` draws on, from its top left; its pixels are those of this canvas's scale.
    void setTarget(CairoSurface target) { target_ = std::move(target); }
    void draw(const Scene& scene) override;

    TextLayouts& texts() { return texts_; }

private:
    double scale_;
    std::shared_ptr<PictureCache> pictures_;
    TextLayouts texts_;
    SymbolMasks symbols_;
    CairoSurface target_;
};

}  // namespace quorvane
