// A painter of a card's layers: the locker's picture, the stage with shadow, glass and scene, and a
// pointer on top.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "drawing/CardWindows.hpp"
#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/drawing/CairoCanvas.hpp"

namespace quorvane {

// How a stage looks at one moment.
struct StageLook {
    const Scene& scene;
    Transform transform{};           // in stage coordinates
    double alpha = 1;                // 0: only the backdrop
    std::optional<Point> pointer{};  // in stage coordinates

    bool isResting() const { return alpha >= 1 && transform == Transform::identity(); }
};

// The area of a pointer with this tip, in the tip's coordinates.
Rect pointerArea(Point tip);

// Main thread only. Caches the costly results: the glass until the backdrop changes, and a picture
// of the whole stage while the stage moves.
class CardPainter {
public:
    CardPainter(const CardStyle& style, double scale, std::shared_ptr<PictureCache> pictures)
        : style_(style), scale_(scale), canvas_(scale, std::move(pictures)) {}

    // `backdrop` has the size of the stage in pixels.
    void setBackdrop(Pixels backdrop);
    // For a picture with real alpha, of this many pixels, over a backdrop that cannot be read.
    void setClear(int width, int height);
    const Pixels& backdrop() const { return backdrop_; }
    // Makes glass and shadow over the backdrop, for the next drawing that needs them. Returns false
    // when they exist already.
    bool makeChrome();
    // Call when the scene looks different somewhere.
    void forgetScene() { moving_ = {}; }

    // Draws the whole stage.
    void draw(cairo_surface_t* target, const StageLook& look);
    // Draws only these parts of a resting stage, in its pixels. Each pixel changes from the old
    // value to the new one in a single write, because the target may be read at the same time.
    // Returns the rows of the parts that have changed.
    std::vector<PixelRect> drawParts(cairo_surface_t* target, const StageLook& look,
                                     std::span<const PixelRect> parts);
    // The same, for a target that is not read at the same time.
    void drawPartsInPlace(cairo_surface_t* target, const StageLook& look,
                          std::span<const PixelRect> parts);
    // The part of a text's frame that its letters may cover.
    Rect inkOf(const TextNode& text) { return canvas_.inkOf(text); }
    // The whole pixels of the stage under these areas of the card, without empty parts.
    std::vector<PixelRect> pixelsOf(std::span<const Rect> cardAreas) const;

private:
    // `place` is the part's position in the target.
    void drawPart(cairo_surface_t* target, const StageLook& look, const PixelRect& part,
                  const PixelRect& place);
    void drawMoving(cairo_t* cairo, const StageLook& look);
    const Pixels& ground();
    const Pixels& moving(const Scene& scene);
    void drawScene(cairo_t* cairo, const Scene& scene);

    CardStyle style_;
    double scale_;
    PixelRect bounds_;  // of the stage
    // Pictures of the whole stage; empty until they are needed. Only one of chrome and ground is
    // kept.
    Pixels backdrop_;  // empty where it cannot be read
    Pixels chrome_;
    Pixels ground_;  // the chrome over the backdrop
    Pixels moving_;  // the chrome and the scene
    Pixels part_;    // of the last size drawn, since allocating takes longer than a small drawing
    CairoCanvas canvas_;
};

}  // namespace quorvane
