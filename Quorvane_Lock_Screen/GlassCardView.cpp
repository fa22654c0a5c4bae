#include "Quorvane_Lock_Screen/GlassCardView.hpp"

#include "AddOnKit/card/PlayerGeometry.hpp"
#include "QuorvaneKit/link/Identifiers.hpp"
#include "Quorvane_Lock_Screen/CardPlacement.hpp"

namespace quorvane {
namespace {

constexpr std::int64_t kClearGlass = 1;
constexpr Spring kEntrance{.perceptualDuration = 0.5, .bounce = 0.05};
constexpr double kEntranceStartScale = 0.94;
constexpr double kEntranceStartOffset = 12;  // points, downward
constexpr Duration kFadeIn = std::chrono::milliseconds{350};
constexpr Duration kFadeInReducedMotion = std::chrono::milliseconds{300};
constexpr Duration kFadeOut = std::chrono::milliseconds{200};

// The start of the entrance: slightly smaller about the stage's middle and slightly lower.
Transform entranceStart() {
    const double width = kCardSize.width + 2 * kCardShadowMargin;
    const double height = kCardSize.height + 2 * kCardShadowMargin;
    return {.scale = kEntranceStartScale,
            .centre = {width / 2, height / 2},
            .offset = {0, kEntranceStartOffset}};
}

}  // namespace

CardStyle GlassCardView::style() {
    return {.card = kCardSize,
            .shadowMargin = kCardShadowMargin,
            .cornerRadius = kCardCornerRadius,
            .glassStyle = kClearGlass,
            .shadowOpacity = 0.25,
            .shadowRadius = 22,
            .shadowOffset = 8,
            .textBottom = PlayerGeometry::make(true, false).elapsed.maxY()};
}

GlassCardView::GlassCardView(std::shared_ptr<CardStage> stage, std::unique_ptr<CardContent> content,
                             CardSystemWindow& window, std::set<Unseen> unseen,
                             std::function<bool()> reducesMotion, const LogSink& log)
    : stage_(std::move(stage)),
      window_(window),
      content_(std::move(content)),
      reducesMotion_(std::move(reducesMotion)),
      log_(log, kAddOnBundleIdentifier, "presenter"),
      unseen_(std::move(unseen)) {
    window_.setCoverObserver([this, life = life_.watch()](bool isCovered) {
        if (!life.isOver()) setUnseen(Unseen::covered, isCovered);
    });
}

void GlassCardView::setUnseen(Unseen reason, bool holds) {
    const bool wasSeen = isSeen();
    if (holds)
        unseen_.insert(reason);
    else
        unseen_.erase(reason);
    if (isSeen() == wasSeen) return;
    if (isShown_) window_.setIgnoresMouseEvents(!isSeen());
    if (isSeen()) {
        if (isShown_) showImmediately();
        return;
    }
    content_->freeze();
    stage_->removeAnimations();
    window_.setAlpha(isShown_ ? 1 : 0);
}

// Returns false while the card cannot be seen; it then appears when that ends.
bool GlassCardView::beginShowing() {
    isShown_ = true;
    if (!isSeen()) {
        window_.setIgnoresMouseEvents(true);
        return false;
    }
    content_->setShown(true);
    stage_->setHidden(false);
    return true;
}

void GlassCardView::runEntrance() {
    const bool reduceMotion = reducesMotion_();
    if (!beginShowing()) return;
    log_.info("entrance: window %ld, reduce motion %{bool}d", window_.number(), reduceMotion);
    stage_->removeAnimations();
    if (!reduceMotion) stage_->springFrom(entranceStart(), kEntrance);
    window_.setAlpha(0);
    window_.animateAlpha(1, reduceMotion ? kFadeInReducedMotion : kFadeIn, nullptr);
}

void GlassCardView::showImmediately() {
    if (!beginShowing()) return;
    stage_->removeAnimations();
    window_.setAlpha(1);
}

void GlassCardView::runExit() {
    isShown_ = false;
    // The player may have quit, so the fade shows the card as it was, not emptied.
    content_->freeze();
    log_.info("exit: window %ld", window_.number());
    if (!isSeen()) {
        window_.setAlpha(0);
        hideIfStillNotShown();
        return;
    }
    window_.animateAlpha(0, kFadeOut, [this, life = life_.watch()] {
        if (!life.isOver()) hideIfStillNotShown();
    });
}

void GlassCardView::hideIfStillNotShown() {
    if (isShown_) return;
    stage_->setHidden(true);
    content_->setShown(false);
}

}  // namespace quorvane
