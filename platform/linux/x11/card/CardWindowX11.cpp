#include "platform/linux/x11/card/CardWindowX11.hpp"

#include <algorithm>
#include <utility>

namespace quorvane {
namespace {

constexpr Duration kFrame = std::chrono::nanoseconds{1'000'000'000 / 60};
// The time a locker gets to repaint the area that a moving card has uncovered.
constexpr Duration kRepaintTime = std::chrono::milliseconds{150};

}  // namespace

std::unique_ptr<CardWindowX11> CardWindowX11::make(X11Session& x11,
                                                   std::shared_ptr<CardResources> resources,
                                                   const CardPlace& place, const Screen& screen) {
    std::unique_ptr<CardWindowX11> window{
        new CardWindowX11{x11, std::move(resources), place, screen}};
    CardWindowX11& self = *window;
    window->child_ = CardXWindow::make(x11, self.resources_->log, place.frame, screen,
                                       {.destroyed = [&self] { self.vanish(); },
                                        .exposed =
                                            [&self](const PixelRect& part) {
                                                if (self.display_) self.display_->showAgain(part);
                                            },
                                        .covered =
                                            [&self](bool isCovered) {
                                                if (self.display_) self.setCovered(isCovered);
                                            }});
    return window->child_ ? std::move(window) : nullptr;
}

CardWindowX11::CardWindowX11(X11Session& x11, std::shared_ptr<CardResources> resources,
                             const CardPlace& place, const Screen& screen)
    : CardWindowLinux(std::move(resources), place, screen), x11_(x11) {}

CardWindowX11::~CardWindowX11() { close(); }

unsigned long CardWindowX11::occlusionState() const {
    return isOrderedIn_ && !isCovered() ? kOcclusionVisible : 0;
}

void CardWindowX11::setIgnoresMouseEvents(bool ignores) {
    ignoresMouseEvents_ = ignores;
    syncPointer();
}

// A visible card is hidden while it moves, because the picture at its new place can be read only
// without the card. The server repaints a background at once; other lockers must paint first.
void CardWindowX11::setFrame(const Rect& frame, const Screen& screen) {
    screen_ = screen;
    if (!child_->exists()) return;
    const PixelRect place = child_->placeFor(frame);
    if (place != child_->place() && display_) {
        const Instant now = resources_->clock.now();
        readableAt_ = display_->isFollowing() ? now : now + kRepaintTime;
        conceal();
        updateSoon();
    }
    child_->moveTo(place);
    child_->cutOut(screen.keepClear);
    x11_.flush();
}

void CardWindowX11::close() {
    CardWindowLinux::close();
    if (child_) child_->destroy();
}

StageLook CardWindowX11::look(Instant now) const {
    return {.scene = stage_->scene(),
            .transform = stage_->transformAt(now),
            .alpha = alphaAt(now),
            .pointer = arrow_};
}

void CardWindowX11::update() {
    const Instant now = resources_->clock.now();
    nextFrame_.reset();
    finishFade(now);
    if (!shouldBeVisible()) {
        hide();
        // An invisible fade also runs for its full duration.
        beginAnimations(now);
        if (fade_) updateAfter(*fade_->begin + fade_->duration - now);
        return;
    }
    if (!display_ && now < readableAt_) return updateAfter(readableAt_ - now);
    if (!display_ && !show(now)) return endFade();
    display_->draw(look(now));
    syncPointer();
    beginAnimations(resources_->clock.now());
    display_->afterFrame();
    const Instant done = resources_->clock.now();
    // The next frame is timed from the start of this one, however long drawing took.
    if (isMoving(now)) updateAfter(kFrame - (done - now));
}

void CardWindowX11::updateAfter(Duration delay) {
    nextFrame_ = resources_->clock.after(std::max(Duration{}, delay), [this] { update(); });
}

bool CardWindowX11::show(Instant now) {
    display_ =
        std::make_unique<CardDisplay>(x11_, resources_->clock, *child_, stage_->style(), scale(),
                                      resources_->pictures, [this] { updateSoon(); });
    if (!display_->prepare(stage_->transformAt(now))) {
        display_.reset();
        resources_->log.error("windows: window %ld cannot be shown", number());
        return false;
    }
    child_->map();
    if (pointer_) pointer_->cardMoved();
    setAccessible(true);
    return true;
}

void CardWindowX11::hide() {
    pointer_.reset();
    setAccessible(false);
    conceal();
}

void CardWindowX11::conceal() {
    nextFrame_.reset();
    arrow_.reset();
    if (child_) child_->unmap();
    display_.reset();
    setCovered(false);
}

void CardWindowX11::sceneChanged(const std::vector<Rect>& areas) {
    if (!display_) return;
    display_->sceneChanged();
    // The next frame of a movement, or a posted update, draws everything anyway.
    if (nextFrame_ || isUpdatePosted_) return;
    if (alpha_ >= 1)
        display_->drawParts(look(resources_->clock.now()), areas);
    else
        updateSoon();
}

void CardWindowX11::syncPointer() {
    if (!display_ || ignoresMouseEvents_) return pointer_.reset();
    if (pointer_) return;
    pointer_ = std::make_unique<CardPointer>(
        x11_, *child_, stage_->style(), scale(),
        CardPointer::Listener{.event = [this](const PointerEvent& event) { deliver(event); },
                              .arrow = [this](std::optional<Point> place) { moveArrow(place); }});
}

void CardWindowX11::moveArrow(std::optional<Point> place) {
    const std::optional<Point> before = std::exchange(arrow_, place);
    if (!display_ || nextFrame_ || isUpdatePosted_) return;
    const double margin = stage_->style().shadowMargin;
    std::vector<Rect> areas;
    for (const auto& tip : {before, place})
        if (tip) areas.push_back(pointerArea(*tip).movedBy(-margin, -margin));
    display_->drawParts(look(resources_->clock.now()), areas);
}

}  // namespace quorvane
