// A painter of a card's layers: the locker's picture, the stage with shadow, glass and scene, and a
// pointer on top.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/card/ScrollingRegion.hpp"
#include "platform/linux/drawing/CairoCanvas.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

// How a stage looks at one moment.
struct StageLook {
    const Scene& scene;
    Transform transform;             // in stage coordinates
    double alpha = 1;                // 0: only the backdrop
    std::optional<Point> pointer{};  // in stage coordinates

    bool isResting() const { return alpha >= 1 && transform == Transform::identity(); }
};

// Main thread only. Caches the costly results: the glass until the backdrop changes, and a picture
// of the whole stage while the stage moves or fades.
class CardPainter {
public:
    CardPainter(const CardStyle& style, double scale, std::shared_ptr<PictureCache> pictures);

    // `backdrop` has the size of the stage in pixels.
    void setBackdrop(Pixels backdrop);
    // For a picture with real alpha, whose backdrop cannot be read. In pixels.
    void setClear(int width, int height);
    const Pixels& backdrop() const { return backdrop_; }
    // Makes glass and shadow over the backdrop, for the next drawing that needs them. Returns false
    // when they exist already.
    bool makeChrome();
    // Call when the scene looks different somewhere.
    void forgetScene() { moving_.reset(); }

    // Draws the whole stage.
    void draw(cairo_surface_t* target, const StageLook& look);
    // Draws only these parts, in pixels of the stage. Each pixel changes from the old value to the
    // new one in a single write, because the target may be read at the same time. Returns the parts
    // that may have changed.
    std::vector<PixelRect> drawParts(cairo_surface_t* target, const StageLook& look,
                                     std::span<const PixelRect> parts);
    // The whole pixels of the stage under an area of the card.
    PixelRect pixelsOf(const Rect& cardArea) const;

private:
    void drawLook(cairo_t* cairo, const StageLook& look);
    void drawBackdrop(cairo_t* cairo) const;
    void drawGround(cairo_t* cairo) const;
    void drawScene(cairo_t* cairo, const Scene& scene);
    void drawPart(cairo_surface_t* target, const StageLook& look, const PixelRect& part);
    Pixels picture(const StageLook& look, const PixelRect& part);
    void drawMoving(cairo_t* cairo, const StageLook& look);

    CardStyle style_;
    double scale_;
    PixelRect bounds_;
    Pixels backdrop_;  // empty: clear
    Pixels chrome_;
    CairoSurface backdropSurface_;  // these two refer to the pixels above
    CairoSurface chromeSurface_;
    std::array<PixelRect, 2> opaque_{};  // where the chrome hides the backdrop
    CairoSurface moving_;
    std::optional<ScrollingRegion> scrolling_;  // as the target shows it
    CairoCanvas canvas_;
};

}  // namespace quorvane
