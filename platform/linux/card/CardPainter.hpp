// Puts a card's picture together: the locker's picture, over it the stage with shadow, glass and
// scene, over that a pointer.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/card/ScrollingPart.hpp"
#include "platform/linux/drawing/CairoCanvas.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"

namespace quorvane {

// How a stage looks at one moment.
struct StageLook {
    const Scene& scene;
    Transform transform;             // in stage coordinates
    double alpha = 1;                // 0: only what is behind
    std::optional<Point> pointer{};  // in stage coordinates

    bool isResting() const { return alpha >= 1 && transform == Transform::identity(); }
};

// Main thread only. Keeps what is costly: the glass for as long as the backdrop is the same, and a
// picture of the whole stage while that moves or fades.
class CardPainter {
public:
    CardPainter(const CardStyle& style, double scale, std::shared_ptr<PictureCache> pictures);

    // `backdrop` has the size of the stage in pixels.
    void setBackdrop(Pixels backdrop);
    const Pixels& backdrop() const { return backdrop_; }
    // Glass and shadow over the backdrop, for the next drawing that needs them. False when they are
    // there.
    bool makeChrome();
    // The scene looks different somewhere.
    void forgetScene() { moving_.reset(); }

    // Draws all of it.
    void draw(cairo_surface_t* target, const StageLook& look);
    // Draws these parts, in pixels of the stage, and leaves the others alone. They turn from the
    // old look to the new one without a step between, for a target that is being read meanwhile.
    // Returns what of them may have changed.
    std::vector<PixelRect> drawParts(cairo_surface_t* target, const StageLook& look,
                                     std::span<const PixelRect> parts);
    // The whole pixels of the stage under an area of the card.
    PixelRect pixelsOf(const Rect& cardArea) const;

private:
    void drawLook(cairo_t* cairo, const StageLook& look);
    void drawGround(cairo_t* cairo) const;
    void drawScene(cairo_t* cairo, const Scene& scene);
    void drawPart(cairo_surface_t* target, const StageLook& look, const PixelRect& part);
    Pixels picture(const StageLook& look, const PixelRect& part);
    void drawMoving(cairo_t* cairo, const StageLook& look);

    CardStyle style_;
    double scale_;
    Pixels backdrop_;
    Pixels chrome_;
    CairoSurface backdropSurface_;  // the two over the pixels above
    CairoSurface chromeSurface_;
    std::array<PixelRect, 2> opaque_{};  // where the chrome hides the backdrop
    CairoSurface moving_;
    std::optional<ScrollingPart> scrolling_;  // as the target shows it
    CairoCanvas canvas_;
};

}  // namespace quorvane
