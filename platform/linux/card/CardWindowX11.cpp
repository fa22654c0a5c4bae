#include "platform/linux/card/CardWindowX11.hpp"

#include <algorithm>
#include <utility>

#include "platform/Seconds.hpp"

namespace quorvane {
namespace {

constexpr Duration kFrame = std::chrono::nanoseconds{1'000'000'000 / 60};
constexpr unsigned long kOcclusionVisible = 2;
// The time a locker gets to repaint the area that a moving card has uncovered.
constexpr Duration kRepaintTime = std::chrono::milliseconds{150};

}  // namespace

std::unique_ptr<CardWindowX11> CardWindowX11::make(std::shared_ptr<CardResources> resources,
                                                   const WindowSettings& settings,
                                                   const Screen& screen) {
    std::unique_ptr<CardWindowX11> window{
        new CardWindowX11{std::move(resources), settings, screen}};
    CardWindowX11& self = *window;
    window->child_ =
        CardXWindow::make(self.resources_->x11, self.resources_->log, settings.frame, screen,
                          {.destroyed = [&self] { self.vanish(); },
                           .exposed =
                               [&self](const PixelRect& part) {
                                   if (self.display_) self.display_->showAgain(part);
                               }});
    if (!window->child_) return nullptr;
    window->number_ = static_cast<long>(window->child_->window());
    return window;
}

CardWindowX11::CardWindowX11(std::shared_ptr<CardResources> resources,
                             const WindowSettings& settings, const Screen& screen)
    : resources_(std::move(resources)),
      screen_(screen),
      contentScale_(settings.contentScale),
      alpha_(settings.alpha),
      ignoresMouseEvents_(settings.ignoresMouseEvents),
      pictures_(resources_->picturesArrived.add([this] { picturesArrived(); })) {}

CardWindowX11::~CardWindowX11() { close(); }

unsigned long CardWindowX11::occlusionState() const {
    return isOrderedIn_ && !child_->isObscured() ? kOcclusionVisible : 0;
}

void CardWindowX11::setIgnoresMouseEvents(bool ignores) {
    ignoresMouseEvents_ = ignores;
    syncPointer();
}

void CardWindowX11::setContent(std::shared_ptr<CardStage> stage) {
    if (stage_) stage_->setHost(nullptr);
    hide();
    stage_ = std::dynamic_pointer_cast<CardStageX11>(std::move(stage));
    if (stage_) stage_->setHost(this);
    updateSoon();
}

// A visible card is hidden while it moves, because the picture at its new place can be read only
// without the card. The server repaints a background at once; other lockers must paint first.
void CardWindowX11::setFrame(const Rect& frame, const Screen& screen) {
    screen_ = screen;
    if (!child_->isStanding()) return;
    const PixelRect place = child_->placeFor(frame, screen);
    if (place != child_->place() && display_) {
        const Instant now = resources_->clock.now();
        readableAt_ = display_->isFollowing() ? now : now + kRepaintTime;
        conceal();
        updateSoon();
    }
    child_->moveTo(place);
    child_->cutOut(screen.keepClear, screen);
    resources_->x11.flush();
}

void CardWindowX11::orderFrontRegardless() {
    isOrderedIn_ = child_->isStanding();
    updateSoon();
}

void CardWindowX11::orderOut() {
    isOrderedIn_ = false;
    hide();
}

void CardWindowX11::close() {
    orderOut();
    endFade();
    if (stage_) stage_->setHost(nullptr);
    stage_.reset();
    if (child_) child_->destroy();
}

void CardWindowX11::setAlpha(double alpha) {
    endFade();
    alpha_ = alpha;
    updateSoon();
}

void CardWindowX11::animateAlpha(double alpha, Duration duration,
                                 std::function<void()> completion) {
    const Instant now = resources_->clock.now();
    const double from = alphaAt(now);
    endFade();
    alpha_ = alpha;
    fade_ = Fade{from, alpha, std::nullopt, duration, std::move(completion)};
    if (!child_->isStanding()) endFade();
    updateSoon();
}

void CardWindowX11::setMouseDownObserver(std::function<void(Point)> observer) {
    mouseDownObserver_ = std::move(observer);
}

// Ends the fade; `alpha_` already is its target value.
void CardWindowX11::endFade() {
    auto fade = std::exchange(fade_, std::nullopt);
    if (fade && fade->completion) resources_->mainThread.post(std::move(fade->completion));
}

double CardWindowX11::alphaAt(Instant now) const {
    if (!fade_) return alpha_;
    if (!fade_->begin) return fade_->from;
    const double whole = secondsOf(fade_->duration);
    const double share = whole > 0 ? secondsOf(now - *fade_->begin) / whole : 1;
    return fade_->from + (fade_->to - fade_->from) * easeInOut(share);
}

StageLook CardWindowX11::look(Instant now) const {
    return {.scene = stage_->scene(),
            .transform = stage_->transformAt(now),
            .alpha = alphaAt(now),
            .pointer = arrow_};
}

bool CardWindowX11::isMoving(Instant now) const { return fade_ || stage_->isMoving(now); }

bool CardWindowX11::isToBeSeen() const {
    return isOrderedIn_ && stage_ && !stage_->isHidden() && (alpha_ > 0 || fade_);
}

// Coalesces all changes of one main-loop turn into one update: an entrance changes five things, and
// no intermediate state may be visible.
void CardWindowX11::updateSoon() {
    if (std::exchange(isUpdatePosted_, true)) return;
    post([this] {
        isUpdatePosted_ = false;
        update();
    });
}

void CardWindowX11::update() {
    const Instant now = resources_->clock.now();
    nextFrame_.reset();
    finishFade(now);
    if (!isToBeSeen()) {
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

void CardWindowX11::beginAnimations(Instant now) {
    if (fade_ && !fade_->begin) fade_->begin = now;
    if (stage_) stage_->beginMovement(now);
}

void CardWindowX11::finishFade(Instant now) {
    if (fade_ && fade_->begin && now - *fade_->begin >= fade_->duration) endFade();
}

bool CardWindowX11::show(Instant now) {
    display_ =
        std::make_unique<CardDisplay>(resources_->x11, resources_->clock, *child_, stage_->style(),
                                      scale(), resources_->pictures, [this] { updateSoon(); });
    if (!display_->prepare(stage_->transformAt(now))) {
        display_.reset();
        resources_->log.error("windows: window %ld cannot be shown", number_);
        return false;
    }
    child_->map();
    if (pointer_) pointer_->cardMoved();
    tellAccessibility(true);
    return true;
}

void CardWindowX11::hide() {
    pointer_.reset();
    tellAccessibility(false);
    conceal();
}

void CardWindowX11::conceal() {
    nextFrame_.reset();
    arrow_.reset();
    if (child_) child_->unmap();
    display_.reset();
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

void CardWindowX11::picturesArrived() {
    if (!stage_) return;
    std::vector<Rect> areas;
    const Rect whole{0, 0, stage_->style().card.width, stage_->style().card.height};
    for (const SceneNode& node : stage_->scene().nodes)
        if (std::holds_alternative<ImageNode>(node)) areas = {whole};
    if (!areas.empty()) sceneChanged(areas);
}

void CardWindowX11::syncPointer() {
    if (!display_ || ignoresMouseEvents_) return pointer_.reset();
    if (pointer_) return;
    pointer_ = std::make_unique<CardPointer>(
        resources_->x11, *child_, stage_->style(), scale(),
        CardPointer::Listener{.event = [this](const PointerEvent& event) { pointerEvent(event); },
                              .arrow = [this](std::optional<Point> place) { moveArrow(place); }});
}

// Posted, so that the content is never called from inside a call to its window.
void CardWindowX11::pointerEvent(const PointerEvent& event) {
    post([this, event, stage = std::weak_ptr{stage_}] {
        const auto content = stage.lock();
        if (!content) return;
        const CardStyle& style = content->style();
        // In window coordinates y grows upward.
        const Point inWindow{event.location.x + style.shadowMargin,
                             style.card.height + style.shadowMargin - event.location.y};
        const auto observer = mouseDownObserver_;
        if (event.kind == PointerEvent::Kind::down && observer) observer(inWindow);
        const auto pointer = content->events().pointer;
        if (pointer) pointer(event);
    });
}

// A hidden card is not exposed to assistive technology.
void CardWindowX11::tellAccessibility(bool isSeen) {
    if (!resources_->accessibility || std::exchange(isAccessible_, isSeen) == isSeen) return;
    if (isSeen)
        resources_->accessibility->appeared(*this);
    else
        resources_->accessibility->disappeared(*this);
}

void CardWindowX11::controlsChanged() {
    if (isAccessible_) resources_->accessibility->changed(*this);
}

Point CardWindowX11::accessibleOrigin() const {
    const double margin = stage_->style().shadowMargin * scale();
    return {child_->origin().x + margin, child_->origin().y + margin};
}

void CardWindowX11::perform(SceneControl::ID control, AccessibilityAction action) {
    post([control, action, stage = std::weak_ptr{stage_}] {
        const auto content = stage.lock();
        const auto perform = content ? content->events().accessibility : nullptr;
        if (perform) perform(control, action);
    });
}

void CardWindowX11::setNumber(SceneControl::ID control, double number) {
    post([control, number, stage = std::weak_ptr{stage_}] {
        const auto content = stage.lock();
        const auto setNumber = content ? content->events().accessibilityNumber : nullptr;
        if (setNumber) setNumber(control, number);
    });
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

// The server has destroyed the window.
void CardWindowX11::vanish() {
    isOrderedIn_ = false;
    hide();
    endFade();
}

void CardWindowX11::post(std::function<void()> action) {
    resources_->mainThread.post([life = life_.watch(), action = std::move(action)] {
        if (!life.isOver()) action();
    });
}

}  // namespace quorvane
