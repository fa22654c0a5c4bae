// The pixels of a visible card window: the backdrop, the glass, the picture in memory. Created when
// the window is shown and destroyed when it is hidden, so that a hidden card holds no pixels.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/Clock.hpp"
#include "platform/linux/card/CardPainter.hpp"
#include "platform/linux/x11/card/Backdrop.hpp"
#include "platform/linux/x11/card/BackdropWatch.hpp"
#include "platform/linux/x11/card/CardXWindow.hpp"
#include "platform/linux/x11/card/WindowBuffer.hpp"

namespace quorvane {

// Main thread only. The child outlives it. The window includes the margin with the shadow only
// while the locker's picture behind it is known at every moment, so that stale pixels never show
// around the card. Otherwise the window has the card's own shape.
class CardDisplay {
public:
    // `backdropChanged` is called when the backdrop has changed; the caller then redraws
    // everything.
    CardDisplay(X11Session& x11, Clock clock, CardXWindow& child, const CardStyle& style,
                double scale, std::shared_ptr<PictureCache> pictures,
                std::function<void()> backdropChanged);
    // Call first. Reads the backdrop, so the child must still be unmapped. `transform` is the
    // stage's initial transform. Returns false when the locker's window is gone or memory is short.
    bool prepare(const Transform& transform);

    // Work that a frame need not wait for. Call after each frame: each call does one part of the
    // work and leaves time for the next frame.
    void afterFrame();
    // Whether the backdrop is the locker's background, which can be read while the card is shown.
    bool isFollowing() const { return isFollowing_; }
    void draw(const StageLook& look);
    // Draws only these areas of the scene, in card coordinates, if the stage rests.
    void drawParts(const StageLook& look, const std::vector<Rect>& cardAreas);
    void sceneChanged() { painter_.forgetScene(); }
    Rect inkOf(const TextNode& text) { return painter_.inkOf(text); }
    // Shows this part of the last drawing again.
    void showAgain(const PixelRect& part);

private:
    void beginWatching();
    void lockerHasDrawn();
    void lockerRests();
    void follow(Backdrop::Background background);
    void stopFollowing();
    void shapeAsCard();
    LockerPlace place() const { return {child_.place(), child_.holes()}; }

    X11Session& x11_;
    Clock clock_;
    CardXWindow& child_;
    CardStyle style_;
    double scale_;
    Backdrop backdrop_;
    CardPainter painter_;
    std::unique_ptr<WindowBuffer> buffer_;
    Transform transform_;  // of the last drawing
    std::function<void()> backdropChanged_;
    bool isFollowing_ = false;
    EdgePixels edge_;  // around the backdrop that is followed
    std::optional<BackdropWatch> watch_;
};

}  // namespace quorvane
