#include "platform/linux/CardDisplay.hpp"

#include <utility>
#include <vector>

namespace quorvane {

std::unique_ptr<CardDisplay> CardDisplay::make(X11Session& x11, const Clock& clock,
                                               LockerChild& child, const CardStyle& style,
                                               double scale, std::shared_ptr<PictureCache> pictures,
                                               std::function<void()> backdropChanged) {
    std::unique_ptr<CardDisplay> display{new CardDisplay{
        x11, clock, child, style, scale, std::move(pictures), std::move(backdropChanged)}};
    return display->prepare() ? std::move(display) : nullptr;
}

CardDisplay::CardDisplay(X11Session& x11, const Clock& clock, LockerChild& child,
                         const CardStyle& style, double scale,
                         std::shared_ptr<PictureCache> pictures,
                         std::function<void()> backdropChanged)
    : x11_(x11),
      clock_(clock),
      child_(child),
      lockerPicture_(x11, child.locker()),
      painter_(style, scale, std::move(pictures)),
      backdropChanged_(std::move(backdropChanged)) {}

bool CardDisplay::prepare() {
    const PixelRect place = child_.place();
    buffer_ = WindowBuffer::make(x11_.connection(), child_.window(), place.width, place.height,
                                 child_.depth());
    if (!buffer_) return false;
    auto visible = lockerPicture_.visible(place, buffer_->shared());
    if (!visible) return false;
    painter_.setBackdrop(std::move(*visible));
    return true;
}

void CardDisplay::afterFrame() {
    if (painter_.makeChrome()) return;
    if (!std::exchange(followsLocker_, true)) followLocker();
}

// From now on what the locker draws behind is seen to, where that can be.
void CardDisplay::followLocker() {
    const auto background = lockerPicture_.background(child_.place());
    showsBackground_ = background && *background == painter_.backdrop();
    watchLocker();
}

// Only a background can be read again while our own window stands before it.
void CardDisplay::watchLocker() {
    watch_.reset();
    if (showsBackground_)
        watch_.emplace(x11_, clock_, child_.locker().window, child_.place(),
                       [this] { lockerHasDrawn(); });
}

void CardDisplay::lockerHasDrawn() {
    auto background = lockerPicture_.background(child_.place());
    if (!background || *background == painter_.backdrop()) return;
    painter_.setBackdrop(std::move(*background));
    backdropChanged_();
}

Pixels CardDisplay::backdropAt(const PixelRect& place) {
    if (showsBackground_)
        if (auto background = lockerPicture_.background(place)) return std::move(*background);
    // Where our own window stands now, what was read before it came.
    auto visible = lockerPicture_.visible(place);
    Pixels backdrop =
        visible ? std::move(*visible) : Pixels{place.width, place.height, kOpaqueBlack};
    copyInto(backdrop, painter_.backdrop(), child_.place().x - place.x, child_.place().y - place.y);
    return backdrop;
}

void CardDisplay::moveTo(const PixelRect& place) {
    if (place == child_.place()) return;
    const bool isResized =
        place.width != child_.place().width || place.height != child_.place().height;
    painter_.setBackdrop(backdropAt(place));
    if (isResized)
        buffer_ = WindowBuffer::make(x11_.connection(), child_.window(), place.width, place.height,
                                     child_.depth());
    child_.moveTo(place);
    watchLocker();
}

void CardDisplay::draw(const StageLook& look) {
    if (!buffer_) return;
    const PixelRect whole[] = {buffer_->bounds()};
    buffer_->waitUntilRead();
    painter_.draw(buffer_->surface(), look);
    buffer_->show(whole);
    x11_.flush();
}

void CardDisplay::drawParts(const StageLook& look, const std::vector<Rect>& cardAreas) {
    if (!buffer_) return;
    std::vector<PixelRect> parts;
    for (const Rect& area : cardAreas) {
        const PixelRect part = painter_.pixelsOf(area);
        if (!part.isEmpty()) parts.push_back(part);
    }
    if (parts.empty()) return;
    buffer_->show(painter_.drawParts(buffer_->surface(), look, parts));
    x11_.flush();
}

void CardDisplay::showAgain(const PixelRect& part) {
    if (!buffer_) return;
    const PixelRect parts[] = {part};
    buffer_->show(parts);
    x11_.flush();
}

}  // namespace quorvane
