#include "platform/linux/wayland/card/CardWindowWayland.hpp"

#include <cmath>
#include <utility>

#include "drawing/pictures/CardShape.hpp"
#include "lockers/GreeterZones.hpp"

namespace quorvane {
namespace {

// A compositor that shows the surface asks for the next frame much sooner.
constexpr Duration kLongestFrame = std::chrono::seconds{1};

}  // namespace

CardWindowWayland::CardWindowWayland(WaylandSession& session,
                                     std::shared_ptr<CardResources> resources,
                                     const WindowSettings& settings, const Screen& screen,
                                     long number)
    : CardWindowLinux(std::move(resources), settings, screen),
      session_(session),
      frame_(settings.frame),
      number_(number) {}

CardWindowWayland::~CardWindowWayland() { close(); }

void CardWindowWayland::setIgnoresMouseEvents(bool ignores) {
    ignoresMouseEvents_ = ignores;
    syncInput();
}

void CardWindowWayland::setFrame(const Rect& frame, const Screen& screen) {
    hide();
    frame_ = frame;
    screen_ = screen;
    updateSoon();
}

void CardWindowWayland::endFade() {
    fadeEnd_.reset();
    CardWindowLinux::endFade();
}

void CardWindowWayland::updateSoon() {
    if (shown_) shown_->isStale = true;
    CardWindowLinux::updateSoon();
}

void CardWindowWayland::update() {
    const Instant now = resources_->clock.now();
    finishFade(now);
    const bool isSeen = isToBeSeen();
    if (!isSeen) hide();
    if (isSeen && !shown_ && !show()) return endFade();
    if (isSeen) drawIfPaced(now);
    beginAnimations(resources_->clock.now());
    if (!fade_) return;
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
    const ToSurface request{
        .place = place, .width = pixels(place.width), .height = pixels(place.height)};
    auto pictures = SharedPictures::make(request.width, request.height);
    const std::uint32_t surface =
        pictures ? session_.open(screen_, request, pictures->memory(), surfaceEvents()) : 0;
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

// They come only while the surface is open.
SurfaceEvents CardWindowWayland::surfaceEvents() {
    return {.frame =
                [this] {
                    shown_->awaitsFrame = false;
                    if (!isCovered()) return update();
                    setCovered(false);
                    updateSoon();  // once the observer has drawn
                },
            .released =
                [this](std::uint32_t picture) {
                    shown_->pictures->released(picture);
                    if (!shown_->awaitsFrame) update();
                },
            .pointer = [this](const FromSurface& message) { pointerEvent(message); },
            .closed = [this] { vanish(); }};
}

void CardWindowWayland::hide() {
    tellAccessibility(false);
    if (!shown_) return;
    const std::uint32_t surface = shown_->surface;
    shown_.reset();
    setCovered(false);
    session_.close(surface);
    report(press_.cancel());
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
    shown.sent = now;
    session_.send({.kind = ToSurface::Kind::show,
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
    // No timer watches for this: only a change that is not shown matters.
    if (shown_->awaitsFrame && resources_->clock.now() - shown_->sent > kLongestFrame)
        setCovered(true);
    if (!isUpdatePosted_) update();
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
    session_.send({.kind = ToSurface::Kind::input,
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

void CardWindowWayland::report(const std::optional<PointerEvent>& event) {
    if (event && stage_) deliver(*event);
}

// On its screen: Wayland has no coordinates of the whole desktop.
Point CardWindowWayland::origin() const {
    const PixelRect place = placeOnOutput(frame_, screen_);
    return {place.x * screen_.scale, place.y * screen_.scale};
}

}  // namespace quorvane
