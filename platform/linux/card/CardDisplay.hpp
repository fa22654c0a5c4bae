// All that a card window needs while it is to be seen: the backdrop, the glass, the picture in
// memory. Made when it begins to show and dropped when it ends, so a hidden card holds no pixels.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/Clock.hpp"
#include "platform/linux/card/CardPainter.hpp"
#include "platform/linux/card/LockerChild.hpp"
#include "platform/linux/card/LockerPicture.hpp"
#include "platform/linux/card/LockerPictureWatch.hpp"
#include "platform/linux/card/WindowBuffer.hpp"

namespace quorvane {

// Main thread only. The child outlives it. Nothing around the card is ever wrong: the margin with
// the card's shadow shows only while the locker's picture behind it is known at every moment.
// Otherwise the window has the card's own shape.
class CardDisplay {
public:
    // Reads the backdrop, so the child is still unmapped. Null when the locker has gone or there is
    // no memory. `transform` is the stage's at first. `backdropChanged` is called when the backdrop
    // has changed; the caller then draws everything again.
    static std::unique_ptr<CardDisplay> make(X11Session& x11, const Clock& clock,
                                             LockerChild& child, const CardStyle& style,
                                             double scale, std::shared_ptr<PictureCache> pictures,
                                             const Transform& transform,
                                             std::function<void()> backdropChanged);

    // What a frame need not wait for: each call after one does a part of it, and leaves time for
    // the next frame.
    void afterFrame();
    // Whether the backdrop is the locker's picture now, known without a look behind the window.
    bool isFollowing() const { return isFollowing_; }
    void draw(const StageLook& look);
    // Draws only these areas of the scene, in card coordinates, and these of the stage.
    void drawParts(const StageLook& look, const std::vector<Rect>& cardAreas);
    void sceneChanged() { painter_.forgetScene(); }
    // Shows again what was drawn last.
    void showAgain(const PixelRect& part);

private:
    CardDisplay(X11Session& x11, const Clock& clock, LockerChild& child, const CardStyle& style,
                double scale, std::shared_ptr<PictureCache> pictures, const Transform& transform,
                std::function<void()> backdropChanged);
    bool prepare();
    void beginWatching();
    void lockerHasDrawn();
    void lockerRests();
    void follow(LockerPicture::Background background);
    void stopFollowing();
    void shapeAsCard();
    LockerPlace place() const;

    X11Session& x11_;
    Clock clock_;
    LockerChild& child_;
    CardStyle style_;
    double scale_;
    LockerPicture lockerPicture_;
    CardPainter painter_;
    std::unique_ptr<WindowBuffer> buffer_;
    Transform transform_;  // of the last drawing
    std::function<void()> backdropChanged_;
    bool isFollowing_ = false;
    EdgePixels edge_;  // around the backdrop that is followed
    std::optional<LockerPictureWatch> watch_;
};

}  // namespace quorvane
