// All that a card window needs while it is to be seen: the backdrop, the glass, the picture in
// memory. Made when it begins to show and dropped when it ends, so a hidden card holds no pixels.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/Clock.hpp"
#include "platform/linux/CardPainter.hpp"
#include "platform/linux/LockerChild.hpp"
#include "platform/linux/LockerPicture.hpp"
#include "platform/linux/LockerPictureWatch.hpp"
#include "platform/linux/WindowBuffer.hpp"

namespace quorvane {

// Main thread only. The child outlives it.
class CardDisplay {
public:
    // Reads the backdrop, so the child is still unmapped. Null when the locker has gone or there is
    // no memory. `backdropChanged` is called when the locker has drawn something else behind;
    // everything is to be drawn again then.
    static std::unique_ptr<CardDisplay> make(X11Session& x11, const Clock& clock,
                                             LockerChild& child, const CardStyle& style,
                                             double scale, std::shared_ptr<PictureCache> pictures,
                                             std::function<void()> backdropChanged);

    // What a frame need not wait for: each call after one does a part of it, and leaves time for
    // the next frame.
    void afterFrame();
    // Moves the child; everything is to be drawn again.
    void moveTo(const PixelRect& place);
    void draw(const StageLook& look);
    // Draws only these areas of the scene, in card coordinates, and these of the stage.
    void drawParts(const StageLook& look, const std::vector<Rect>& cardAreas);
    void sceneChanged() { painter_.forgetScene(); }
    // Shows again what was drawn last.
    void showAgain(const PixelRect& part);

private:
    CardDisplay(X11Session& x11, const Clock& clock, LockerChild& child, const CardStyle& style,
                double scale, std::shared_ptr<PictureCache> pictures,
                std::function<void()> backdropChanged);
    bool prepare();
    void followLocker();
    void lockerHasDrawn();
    void watchLocker();
    Pixels backdropAt(const PixelRect& place);

    X11Session& x11_;
    Clock clock_;
    LockerChild& child_;
    LockerPicture lockerPicture_;
    CardPainter painter_;
    std::unique_ptr<WindowBuffer> buffer_;
    std::function<void()> backdropChanged_;
    bool followsLocker_ = false;
    bool showsBackground_ = false;  // what is seen of the locker is its background
    std::optional<LockerPictureWatch> watch_;
};

}  // namespace quorvane
