#include "platform/linux/wayland/card/CardWindowWayland.hpp"

#include <cmath>
#include <utility>

#include "drawing/pictures/CardShape.hpp"
#include "lockers/GreeterZones.hpp"

namespace quorvane {

CardWindowWayland::CardWindowWayland(std::shared_ptr<WaylandCardResources> resources,
                                     const WindowSettings& settings, const Screen& screen)
    : resources_(std::move(resources)),
      screen_(screen),
      frame_(settings.frame),
      contentScale_(settings.contentScale),
      number_(++resources_->windowsMade),
      alpha_(settings.alpha),
      ignoresMouseEvents_(settings.ignoresMouseEvents),
      pictures_(resources_->picturesArrived.add([this] { picturesArrived(); })) {}

CardWindowWayland::~CardWindowWayland() { close(); }

void CardWindowWayland::setIgnoresMouseEvents(bool ignores) {
    ignoresMouseEvents_ = ignores;
    syncInput();
}

void CardWindowWayland::setContent(std::shared_ptr<CardStage> stage) {
    if (stage_) stage_->setHost(nullptr);
    hide();
    stage_ = std::dynamic_pointer_cast<CardStageX11>(std::move(stage));
    if (stage_) stage_->setHost(this);
    updateSoon();
}

void CardWindowWayland::setFrame(const Rect& frame, const Screen& screen) {
    hide();
    frame_ = frame;
    screen_ = screen;
    updateSoon();
}

void CardWindowWayland::orderFrontRegardless() {
    isOrderedIn_ = true;
    updateSoon();
}

void CardWindowWayland::orderOut() {
    isOrderedIn_ = false;
    hide();
}

void CardWindowWayland::close() {
    orderOut();
    endFade();
    if (stage_) stage_->setHost(nullptr);
    stage_.reset();
}

void CardWindowWayland::setAlpha(double alpha) {
    endFade();
    alpha_ = alpha;
    updateSoon();
}

void CardWindowWayland::animateAlpha(double alpha, Duration duration,
                                     std::function<void()> completion) {
    const double from = alphaAt(resources_->clock.now());
    endFade();
    alpha_ = alpha;
    fade_ = Fade{from, alpha, std::nullopt, duration, std::move(completion)};
    updateSoon();
}

void CardWindowWayland::setMouseDownObserver(std::function<void(Point)> observer) {
    mouseDownObserver_ = std::move(observer);
}

// Ends the fade; `alpha_` already is its target value.
void CardWindowWayland::endFade() {
    fadeEnd_.reset();
    auto fade = std::exchange(fade_, std::nullopt);
    if (fade && fade->completion) resources_->mainThread.post(std::move(fade->completion));
}

void CardWindowWayland::finishFade(Instant now) {
    if (fade_ && fade_->begin && now - *fade_->begin >= fade_->duration) endFade();
}

double CardWindowWayland::alphaAt(Instant now) const {
    if (!fade_) return alpha_;
    if (!fade_->begin) return fade_->from;
    const auto elapsed = std::chrono::duration<double>(now - *fade_->begin);
    const auto whole = std::chrono::duration<double>(fade_->duration);
    const double share = whole.count() > 0 ? elapsed / whole : 1;
    return fade_->from + (fade_->to - fade_->from) * easeInOut(share);
}

bool CardWindowWayland::isMoving(Instant now) const { return fade_ || stage_->isMoving(now); }

bool CardWindowWayland::isToBeSeen() const {
    return isOrderedIn_ && stage_ && !stage_->isHidden() && (alpha_ > 0 || fade_);
}

// Coalesces all changes of one main-loop turn into one update: an entrance changes five things, and
// no intermediate state may be visible.
void CardWindowWayland::updateSoon() {
    if (shown_) shown_->isStale = true;
    if (std::exchange(isUpdatePosted_, true)) return;
    post([this] {
        isUpdatePosted_ = false;
        update();
    });
}

void CardWindowWayland::update() {
    const Instant now = resources_->clock.now();
    finishFade(now);
    const bool isSeen = isToBeSeen();
    if (!isSeen) hide();
    if (isSeen && !shown_ && !show()) return endFade();
    if (isSeen) drawIfPaced(now);
    if (stage_) stage_->beginMovement(now);
    if (!fade_) return;
    if (!fade_->begin) fade_->begin = resources_->clock.now();
    // A fade ends in time also where the compositor asks for no frames, as with the screen off.
    fadeEnd_ = resources_->clock.after(*fade_->begin + fade_->duration - now, [this] {
        if (shown_) shown_->isStale = true;
        update();
    });
}

bool CardWindowWayland::show() {
    const PixelRect place = placeOnOutput(frame_, screen_);
    const auto pixels = [&](int length) {
        return static_cast<std::int32_t>(std::lround(length * screen_.scale));
    };
    auto pictures = SharedPictures::make(pixels(place.width), pixels(place.height));
    ToSurface request{.place = place, .width = pixels(place.width), .height = pixels(place.height)};
    // The session posts nothing from inside this call.
    const std::uint32_t surface =
        pictures ? resources_->session.open(
                       screen_, request, pictures->memory(),
                       {.frame =
                            [this] {
                                shown_->awaitsFrame = false;
                                update();
                            },
                        .released =
                            [this](std::uint32_t picture) {
                                shown_->pictures->released(picture);
                                if (!shown_->awaitsFrame) update();
                            },
                        .pointer = [this](const FromSurface& message) { pointerEvent(message); },
                        .closed = [this] { vanish(); }})
                 : 0;
    if (surface == 0) {
        resources_->log.error("windows: window %ld cannot be shown", number_);
        return false;
    }
    shown_.emplace(CardPainter{stage_->style(), scale(), resources_->pictures}, std::move(pictures),
                   surface);
    shown_->painter.setClear(request.width, request.height);
    syncInput();
    tellAccessibility(true);
    return true;
}

void CardWindowWayland::hide() {
    tellAccessibility(false);
    if (!shown_) return;
    const std::uint32_t surface = shown_->surface;
    shown_.reset();
    resources_->session.close(surface);
    report(press_.cancel());
}

// The compositor or the end of the surface process has taken the surface away.
void CardWindowWayland::vanish() {
    isOrderedIn_ = false;
    hide();
    endFade();
}

// Draws what has changed, unless the compositor has not asked for a frame since the last one, or
// reads both pictures. It will tell.
void CardWindowWayland::drawIfPaced(Instant now) {
    Shown& shown = *shown_;
    if (isMoving(now)) shown.isStale = true;
    if (shown.awaitsFrame || (!shown.isStale && shown.areas.empty())) return;
    const auto picture = shown.pictures->next();
    if (!picture) return;
    const auto parts = draw(
        shown.pictures->surface(*picture),
        {.scene = stage_->scene(), .transform = stage_->transformAt(now), .alpha = alphaAt(now)});
    // The frame after the last one of a movement shows the card at rest.
    shown.isStale = isMoving(now);
    shown.areas.clear();
    if (parts.empty()) return;
    shown.pictures->shown(*picture, parts);
    shown.awaitsFrame = true;
    resources_->session.send({.kind = ToSurface::Kind::show,
                              .surface = shown.surface,
                              .picture = *picture,
                              .parts = PixelRects::of(parts)});
    // After the first frame, which shows no glass yet.
    shown.painter.makeChrome();
}

// Returns the changed parts.
std::vector<PixelRect> CardWindowWayland::draw(cairo_surface_t* target, const StageLook& look) {
    Shown& shown = *shown_;
    if (shown.isStale) {
        shown.painter.draw(target, look);
        return {shown.pictures->bounds()};
    }
    std::vector<PixelRect> parts;
    for (const Rect& area : shown.areas) {
        const PixelRect part = shown.painter.pixelsOf(area);
        if (!part.isEmpty()) parts.push_back(part);
    }
    return shown.painter.drawParts(target, look, parts);
}

void CardWindowWayland::sceneChanged(const std::vector<Rect>& areas) {
    if (!shown_) return;
    shown_->painter.forgetScene();
    shown_->areas.insert(shown_->areas.end(), areas.begin(), areas.end());
    if (!isUpdatePosted_) update();
}

void CardWindowWayland::picturesArrived() {
    if (!stage_) return;
    const Rect whole{0, 0, stage_->style().card.width, stage_->style().card.height};
    for (const SceneNode& node : stage_->scene().nodes)
        if (std::holds_alternative<ImageNode>(node)) return sceneChanged({whole});
}

// The card takes the pointer inside its shape, not in its shadow. The outline in points, scaled, is
// that of the surface in logical pixels.
void CardWindowWayland::syncInput() {
    if (!shown_) return;
    std::vector<PixelRect> parts;
    if (!ignoresMouseEvents_)
        parts = cardOutline(stage_->style(), contentScale_, Transform::identity());
    else
        report(press_.cancel());
    resources_->session.send({.kind = ToSurface::Kind::input,
                              .surface = shown_->surface,
                              .parts = PixelRects::of(parts)});
}

void CardWindowWayland::pointerEvent(const FromSurface& message) {
    const double margin = stage_->style().shadowMargin;
    const Point place{message.location.x / contentScale_ - margin,
                      message.location.y / contentScale_ - margin};
    switch (message.kind) {
        case FromSurface::Kind::pressed: return report(press_.down(message.button, place, true));
        case FromSurface::Kind::moved: return report(press_.moved(place));
        case FromSurface::Kind::lifted: return report(press_.up(message.button, place));
        default: return report(press_.cancel());
    }
}

// Posted, so that the content is never called from inside a call to its window.
void CardWindowWayland::report(const std::optional<PointerEvent>& event) {
    if (!event || !stage_) return;
    post([this, event = *event, stage = std::weak_ptr{stage_}] {
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
void CardWindowWayland::tellAccessibility(bool isSeen) {
    if (!resources_->accessibility || std::exchange(isAccessible_, isSeen) == isSeen) return;
    if (isSeen)
        resources_->accessibility->appeared(*this);
    else
        resources_->accessibility->disappeared(*this);
}

void CardWindowWayland::controlsChanged() {
    if (isAccessible_) resources_->accessibility->changed(*this);
}

// On the screen: Wayland has no coordinates of the whole desktop.
Point CardWindowWayland::accessibleOrigin() const {
    const PixelRect place = placeOnOutput(frame_, screen_);
    const double margin = stage_->style().shadowMargin * contentScale_;
    return {(place.x + margin) * screen_.scale, (place.y + margin) * screen_.scale};
}

void CardWindowWayland::perform(SceneControl::ID control, AccessibilityAction action) {
    post([control, action, stage = std::weak_ptr{stage_}] {
        const auto content = stage.lock();
        const auto perform = content ? content->events().accessibility : nullptr;
        if (perform) perform(control, action);
    });
}

void CardWindowWayland::setNumber(SceneControl::ID control, double number) {
    post([control, number, stage = std::weak_ptr{stage_}] {
        const auto content = stage.lock();
        const auto setNumber = content ? content->events().accessibilityNumber : nullptr;
        if (setNumber) setNumber(control, number);
    });
}

void CardWindowWayland::post(std::function<void()> action) {
    resources_->mainThread.post([life = life_.watch(), action = std::move(action)] {
        if (!life.isOver()) action();
    });
}

}  // namespace quorvane
