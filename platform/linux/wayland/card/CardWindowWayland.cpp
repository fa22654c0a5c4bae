#include "platform/linux/wayland/card/CardWindowWayland.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/pictures/CardShape.hpp"
#include "lockers/GreeterZones.hpp"

namespace quorvane {
namespace {

// A compositor that shows the surface asks for the next frame much sooner.
constexpr Duration kLongestFrame = std::chrono::seconds{1};
// A press that waits this long for the next step of a moving title does not feel late.
constexpr Duration kSoon = std::chrono::milliseconds{40};

}  // namespace

CardWindowWayland::CardWindowWayland(WaylandSession& session,
                                     std::shared_ptr<CardResources> resources,
                                     const CardPlace& place, const Screen& screen, long number)
    : CardWindowLinux(std::move(resources), place, screen),
      session_(session),
      frame_(place.frame),
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
    const bool isSeen = shouldBeVisible();
    if (!isSeen || needsNewSurface(now)) hide();
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

// A lock screen that is raised later covers the card. The compositor then keeps the pictures
// without showing them. A new surface is above the lock screen. While the screen is off, a new
// surface does not help, so the interval grows.
bool CardWindowWayland::needsNewSurface(Instant now) {
    if (!shown_ || now - shown_->lastFrame < frameTimeout_) return false;
    if (!shown_->awaitsFrame && shown_->pictures->next()) return false;
    resources_->log.info("windows: window %ld is covered and made again", number_);
    frameTimeout_ = std::min(frameTimeout_ * 2, kLongestFrameTimeout);
    return true;
}

// Shows a card without changes again, because the compositor releases the previous picture only if
// it is visible. While the screen is off, the pending frame shows that. The timer shares a wake-up.
void CardWindowWayland::probeSoon() {
    nextProbe_ = resources_->clock.afterAbout(kProbeInterval, kProbeInterval / 3, [this] {
        probeSoon();
        const Instant now = resources_->clock.now();
        if (shown_->awaitsFrame || now - shown_->lastFrame < kFrameTimeout) return;
        if (const auto picture = shown_->pictures->next())
            present(*picture, {{0, 0, 1, 1}}, now);
        else
            update();
    });
}

bool CardWindowWayland::show() {
    const PixelRect place = placeOnOutput(frame_, screen_);
    const auto pixels = [&](int length) {
        return static_cast<int>(std::lround(length * screen_.scale));
    };
    const int width = pixels(place.width);
    const int height = pixels(place.height);
    auto pictures = SharedPictures::make(width, height);
    auto surface = pictures ? session_.open(screen_, {place, width, height, pictures->memory()},
                                            surfaceEvents())
                            : nullptr;
    if (!surface) {
        resources_->log.error("windows: window %ld cannot be shown", number_);
        return false;
    }
    shown_.emplace(CardPainter{stage_->style(), scale(), resources_->pictures}, std::move(pictures),
                   std::move(surface));
    shown_->painter.setClear(width, height);
    syncInput();
    probeSoon();
    setAccessible(true);
    return true;
}

// The events arrive only while the surface is open.
SurfaceEvents CardWindowWayland::surfaceEvents() {
    return {.frame =
                [this] {
                    shown_->awaitsFrame = false;
                    if (resources_->clock.now() - shown_->lastFrame > kLongestFrame)
                        frameTimeout_ = kFrameTimeout;  // the screen was off
                    if (!isCovered()) return update();
                    setCovered(false);
                    updateSoon();  // once the observer has drawn
                },
            .released =
                [this](std::uint32_t picture) {
                    shown_->pictures->released(picture);
                    frameTimeout_ = kFrameTimeout;
                    if (!shown_->awaitsFrame) update();
                },
            .press = [this](const SurfacePress& press) { pressed(press); },
            .closed = [this] { vanish(); }};
}

void CardWindowWayland::hide() {
    setAccessible(false);
    if (!shown_) return;
    nextProbe_.reset();
    shown_.reset();
    setCovered(false);
    report(press_.cancel());
}

// Draws the changes unless the compositor still owes a frame event or reads both pictures. Its next
// event then continues the drawing.
void CardWindowWayland::drawIfPaced(Instant now) {
    Shown& shown = *shown_;
    if (isMoving(now)) shown.isStale = true;
    if (!shown.awaitsFrame && (shown.isStale || !shown.areas.empty())) drawChanges(now);
    // A moving title wakes the process once for each step, which then reads the answer to the
    // previous step. A compositor slower than the steps skips some.
    const auto next = stage_->scene().nextChange;
    const bool isSoon = next && *next <= kSoon && now - shown.lastFrame <= kSoon;
    if (shown.awaitsFrame && isSoon && !shown.isStale && !press_.isPressed())
        session_.postponeEvents();
}

void CardWindowWayland::drawChanges(Instant now) {
    Shown& shown = *shown_;
    const std::vector<PixelRect> parts =
        shown.isStale ? std::vector{shown.pictures->bounds()} : shown.painter.pixelsOf(shown.areas);
    const auto picture = shown.pictures->next(parts);
    if (!picture) return;
    cairo_surface_t* const target = shown.pictures->surface(*picture);
    const StageLook look{
        .scene = stage_->scene(), .transform = stage_->transformAt(now), .alpha = alphaAt(now)};
    if (shown.isStale)
        shown.painter.draw(target, look);
    else
        shown.painter.drawPartsInPlace(target, look, parts);
    // The frame after the last one of a movement shows the card at rest.
    shown.isStale = isMoving(now);
    shown.areas.clear();
    if (parts.empty()) return;
    present(*picture, parts, now);
    // After the first frame, which shows no glass yet.
    shown.painter.makeChrome();
}

void CardWindowWayland::present(std::uint32_t picture, const std::vector<PixelRect>& parts,
                                Instant now) {
    shown_->pictures->shown(picture, parts);
    shown_->awaitsFrame = true;
    shown_->lastFrame = now;
    shown_->surface->show(picture, parts);
}

void CardWindowWayland::sceneChanged(const std::vector<Rect>& areas) {
    if (!shown_) return;
    shown_->painter.forgetScene();
    shown_->areas.insert(shown_->areas.end(), areas.begin(), areas.end());
    // No timer watches for this: only a change that is not shown matters.
    if (shown_->awaitsFrame && resources_->clock.now() - shown_->lastFrame > kLongestFrame)
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
    shown_->surface->setInput(parts);
}

void CardWindowWayland::pressed(const SurfacePress& press) {
    const double margin = stage_->style().shadowMargin;
    const Point place{press.location.x / contentScale_ - margin,
                      press.location.y / contentScale_ - margin};
    report(press_.handle(press.kind, press.button, place));
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
