#include "platform/linux/card/CardWindowLinux.hpp"

#include <malloc.h>

#include <algorithm>
#include <utility>

#include "platform/Seconds.hpp"
#include "platform/linux/drawing/TextLayoutCache.hpp"

namespace quorvane {
namespace {

// Window pictures are megabytes each and live as long as a card or a movement. By default the C
// library would soon allocate them from its heap, where the hole each leaves stays resident.
void giveLargeBlocksBack() {
    constexpr int kLarge = 256 * 1024;
    mallopt(M_MMAP_THRESHOLD, kLarge);
}

}  // namespace

std::shared_ptr<CardResources> CardResources::make(const CardModuleServices& services) {
    auto queue = services.makeSerialQueue
                     ? services.makeSerialQueue("example.quillon.Quorvane.LockScreenAddOn.pictures")
                     : nullptr;
    return std::make_shared<CardResources>(CardResources{
        .clock = services.clock,
        .mainThread = services.mainThread,
        .log = Logger{services.log, "example.quillon.Quorvane.Platform", "windows"},
        .accessibility = services.accessibility,
        .pictures = std::make_shared<PictureCache>(std::move(queue), services.mainThread)});
}

CardWindows makeCardWindows(decltype(CardWindows::makeWindow) makeWindow) {
    giveLargeBlocksBack();
    CardWindows windows;
    windows.makeWindow = std::move(makeWindow);
    windows.makeStage = [](const CardStyle& style) {
        return std::make_shared<CardStageLinux>(style);
    };
    windows.measureText = makeMeasureText();
    return windows;
}

CardWindowLinux::CardWindowLinux(std::shared_ptr<CardResources> resources, const CardPlace& place,
                                 const Screen& screen)
    : resources_(std::move(resources)),
      screen_(screen),
      contentScale_(place.scale),
      pictures_(resources_->pictures->observe([this] { picturesArrived(); })) {}

void CardWindowLinux::setContent(std::shared_ptr<CardStage> stage) {
    if (stage_) stage_->setHost(nullptr);
    hide();
    stage_ = std::dynamic_pointer_cast<CardStageLinux>(std::move(stage));
    if (stage_) stage_->setHost(this);
    updateSoon();
}

void CardWindowLinux::orderFrontRegardless() {
    isOrderedIn_ = canAppear();
    updateSoon();
}

void CardWindowLinux::orderOut() {
    isOrderedIn_ = false;
    hide();
}

void CardWindowLinux::close() {
    vanish();
    if (stage_) stage_->setHost(nullptr);
    stage_.reset();
}

void CardWindowLinux::vanish() {
    orderOut();
    endFade();
}

void CardWindowLinux::setAlpha(double alpha) {
    if (!fade_ && alpha_ == alpha) return;
    endFade();
    alpha_ = alpha;
    updateSoon();
}

void CardWindowLinux::animateAlpha(double alpha, Duration duration,
                                   std::function<void()> completion) {
    const double from = alphaAt(resources_->clock.now());
    endFade();
    alpha_ = alpha;
    fade_ = Fade{from, std::nullopt, duration, std::move(completion)};
    if (!canAppear()) endFade();
    updateSoon();
}

void CardWindowLinux::setMouseDownObserver(std::function<void(Point)> observer) {
    mouseDownObserver_ = std::move(observer);
}

void CardWindowLinux::setCoverObserver(std::function<void(bool isCovered)> observer) {
    coverObserver_ = std::move(observer);
}

void CardWindowLinux::setCovered(bool isCovered) {
    if (std::exchange(isCovered_, isCovered) == isCovered) return;
    post([this] {
        if (const auto observer = coverObserver_) observer(isCovered_);
    });
}

void CardWindowLinux::endFade() {
    auto fade = std::exchange(fade_, std::nullopt);
    if (fade && fade->completion) resources_->mainThread.post(std::move(fade->completion));
}

void CardWindowLinux::finishFade(Instant now) {
    if (fade_ && fade_->begin && now - *fade_->begin >= fade_->duration) endFade();
}

void CardWindowLinux::beginAnimations(Instant now) {
    if (fade_ && !fade_->begin) fade_->begin = now;
    if (stage_) stage_->beginMovement(now);
}

double CardWindowLinux::alphaAt(Instant now) const {
    if (!fade_) return alpha_;
    if (!fade_->begin) return fade_->from;
    const double whole = secondsOf(fade_->duration);
    const double share = whole > 0 ? secondsOf(now - *fade_->begin) / whole : 1;
    return fade_->from + (alpha_ - fade_->from) * easeInOut(share);
}

bool CardWindowLinux::shouldBeVisible() const {
    return isOrderedIn_ && stage_ && !stage_->isHidden() && (alpha_ > 0 || fade_);
}

void CardWindowLinux::updateSoon() {
    if (std::exchange(isUpdatePosted_, true)) return;
    post([this] {
        isUpdatePosted_ = false;
        update();
    });
}

void CardWindowLinux::picturesArrived() {
    if (!stage_) return;
    const auto isImage = [](const SceneNode& node) {
        return std::holds_alternative<ImageNode>(node);
    };
    const Size card = stage_->style().card;
    if (std::ranges::any_of(stage_->scene().nodes, isImage))
        sceneChanged({{0, 0, card.width, card.height}});
}

void CardWindowLinux::deliver(const PointerEvent& event) {
    const CardStyle& style = stage_->style();
    // In window coordinates y grows upward.
    const Point inWindow{event.location.x + style.shadowMargin,
                         style.card.height + style.shadowMargin - event.location.y};
    postToContent([this, event, inWindow](const StageEvents& events) {
        const auto observer = mouseDownObserver_;
        if (event.kind == PointerEvent::Kind::down && observer) observer(inWindow);
        if (events.pointer) events.pointer(event);
    });
}

void CardWindowLinux::setAccessible(bool isSeen) {
    if (!resources_->accessibility || std::exchange(isAccessible_, isSeen) == isSeen) return;
    if (isSeen)
        resources_->accessibility->appeared(*this);
    else
        resources_->accessibility->disappeared(*this);
}

void CardWindowLinux::controlsChanged() {
    if (isAccessible_) resources_->accessibility->changed(*this);
}

Point CardWindowLinux::accessibleOrigin() const {
    const double margin = stage_->style().shadowMargin * scale();
    return {origin().x + margin, origin().y + margin};
}

void CardWindowLinux::perform(SceneControl::ID control, AccessibilityAction action) {
    postToContent([control, action](const StageEvents& events) {
        if (events.accessibility) events.accessibility(control, action);
    });
}

void CardWindowLinux::setNumber(SceneControl::ID control, double number) {
    postToContent([control, number](const StageEvents& events) {
        if (events.accessibilityNumber) events.accessibilityNumber(control, number);
    });
}

void CardWindowLinux::postToContent(std::function<void(const StageEvents&)> action) {
    post([action = std::move(action), content = std::weak_ptr{stage_}] {
        // A copy, because the content may replace its events inside the call.
        if (const auto stage = content.lock()) action(StageEvents{stage->events()});
    });
}

void CardWindowLinux::post(std::function<void()> action) {
    resources_->mainThread.post([life = life_.watch(), action = std::move(action)] {
        if (!life.isOver()) action();
    });
}

}  // namespace quorvane
