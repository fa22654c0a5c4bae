#include "platform/linux/x11/card/CardDisplay.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "drawing/pictures/CardShape.hpp"

namespace quorvane {
namespace {

bool agreeOutside(const std::vector<PixelRect>& parts, Pixels one, Pixels other) {
    for (const PixelRect& part : parts) {
        fill(one, part, kOpaqueBlack);
        fill(other, part, kOpaqueBlack);
    }
    return one == other;
}

}  // namespace

CardDisplay::CardDisplay(X11Session& x11, Clock clock, CardXWindow& child, const CardStyle& style,
                         double scale, std::shared_ptr<PictureCache> pictures,
                         std::function<void()> backdropChanged)
    : x11_(x11),
      clock_(std::move(clock)),
      child_(child),
      style_(style),
      scale_(scale),
      backdrop_(x11, child.locker().window),
      painter_(style, scale, std::move(pictures)),
      backdropChanged_(std::move(backdropChanged)) {}

bool CardDisplay::prepare(const Transform& transform) {
    const PixelRect place = child_.place();
    buffer_ = WindowBuffer::make(x11_.connection(), child_.window(), place.width, place.height,
                                 child_.depth());
    if (!buffer_) return false;
    auto visible = backdrop_.visible(place, buffer_->shared());
    if (!visible) return false;
    painter_.setBackdrop(std::move(*visible));
    transform_ = transform;
    shapeAsCard();
    return true;
}

void CardDisplay::afterFrame() {
    if (!painter_.makeChrome() && !watch_) beginWatching();
}

void CardDisplay::beginWatching() {
    watch_.emplace(x11_, clock_, child_.locker().window, child_.place(),
                   BackdropWatch::Listener{.drawn = [this] { lockerHasDrawn(); },
                                           .rested = [this] { lockerRests(); }});
    if (watch_->isWatching()) lockerRests();
}

// Checked at each drawing, because the edge changes together with the pixels behind the margin, or
// before them where something moves in from outside.
void CardDisplay::lockerHasDrawn() {
    if (isFollowing_ && backdrop_.visibleEdge(place()) != edge_) stopFollowing();
}

// If the background's edge differs from the visible one, the picture is unfinished or painted over.
void CardDisplay::lockerRests() {
    auto background = backdrop_.background(place());
    if (!background || backdrop_.visibleEdge(place()) != background->edge) return;
    if (isFollowing_) {
        if (agreeOutside(child_.holes(), background->picture, painter_.backdrop())) return;
        stopFollowing();
        return watch_->awaitRest();
    }
    // Outside the card's outline the locker itself is visible now.
    auto visible = backdrop_.visible(child_.place());
    std::vector<PixelRect> other = child_.outline();
    other.insert(other.end(), child_.holes().begin(), child_.holes().end());
    if (visible && agreeOutside(other, std::move(*visible), background->picture))
        follow(std::move(*background));
}

void CardDisplay::follow(Backdrop::Background background) {
    isFollowing_ = true;
    watch_->setImmediate(true);
    edge_ = std::move(background.edge);
    if (background.picture != painter_.backdrop())
        painter_.setBackdrop(std::move(background.picture));
    child_.setOutline({});
    backdropChanged_();
}

void CardDisplay::stopFollowing() {
    isFollowing_ = false;
    watch_->setImmediate(false);
    shapeAsCard();
}

void CardDisplay::shapeAsCard() { child_.setOutline(cardOutline(style_, scale_, transform_)); }

void CardDisplay::draw(const StageLook& look) {
    transform_ = look.transform;
    if (!isFollowing_) shapeAsCard();
    buffer_->waitUntilRead();
    painter_.draw(buffer_->surface(), look);
    showAgain(buffer_->bounds());
}

void CardDisplay::drawParts(const StageLook& look, const std::vector<Rect>& cardAreas) {
    if (!look.isResting()) return draw(look);
    buffer_->show(painter_.drawParts(buffer_->surface(), look, painter_.pixelsOf(cardAreas)));
    x11_.flush();
}

void CardDisplay::showAgain(const PixelRect& part) {
    const PixelRect parts[] = {part};
    buffer_->show(parts);
    x11_.flush();
}

}  // namespace quorvane
