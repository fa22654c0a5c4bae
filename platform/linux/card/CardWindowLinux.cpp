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
    std::shared_ptr<CardResources> resources{new CardResources{
        .clock = services.clock,
        .mainThread = services.mainThread,
        .log = Logger{services.log, "example.quillon.Quorvane.Platform", "windows"},
        .accessibility = services.accessibility}};
    if (!services.makeSerialQueue) {
        resources->pictures = std::make_shared<PictureCache>();
        return resources;
    }
    resources->pictures = std::make_shared<PictureCache>(
        services.makeSerialQueue("example.quillon.Quorvane.LockScreenAddOn.pictures"),
        services.mainThread, [weak = std::weak_ptr{resources}] {
            if (const auto held = weak.lock()) held->picturesArrived.call();
        });
    return resources;
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
      pictures_(resources_->picturesArrived.add([this] { picturesArrived(); })) {}

void CardWindowLinux::setContent(std::shared_ptr<CardStage> stage) {
    if (stage_) stage_->setHost(nullptr);
    hide();
    stage_ = std::dynamic_pointer_cast<CardStageLinux>(std::move(stage));
    if (stage_) stage_->setHost(this);
    updateSoon();
}

void CardWindowLinux::orderFrontRegardless() {
    isOrderedIn_ = isStanding();
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
    fade_ = Fade{from, alpha, std::nullopt, duration, std::move(completion)};
    if (!isStanding()) endFade();
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
    return fade_->from + (fade_->to - fade_->from) * easeInOut(share);
}

bool CardWindowLinux::isToBeSeen() const {
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

void CardWindowLinux::tellAccessibility(bool isSeen) {
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
    post([control, action, stage = std::weak_ptr{stage_}] {
        const auto content = stage.lock();
        const auto perform = content ? content->events().accessibility : nullptr;
        if (perform) perform(control, action);
    });
}

void CardWindowLinux::setNumber(SceneControl::ID control, double number) {
    post([control, number, stage = std::weak_ptr{stage_}] {
        const auto content = stage.lock();
        const auto setNumber = content ? content->events().accessibilityNumber : nullptr;
        if (setNumber) setNumber(control, number);
    });
}

void CardWindowLinux::post(std::function<void()> action) {
    resources_->mainThread.post([life = life_.watch(), action = std::move(action)] {
        if (!life.isOver()) action();
    });
}

}  // namespace quorvane
