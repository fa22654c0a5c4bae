#include "platform/linux/card/CardStageLinux.hpp"

#include <utility>

#include "drawing/SceneChanges.hpp"
#include "platform/Seconds.hpp"

namespace quorvane {

void CardStageLinux::setHidden(bool hidden) {
    if (std::exchange(isHidden_, hidden) != hidden && host_) host_->stageChanged();
}

void CardStageLinux::removeAnimations() {
    if (std::exchange(movement_, std::nullopt) && host_) host_->stageChanged();
}

void CardStageLinux::springFrom(const Transform& start, const Spring& spring) {
    movement_ = Movement{start, spring, std::nullopt};
    if (host_) host_->stageChanged();
}

void CardStageLinux::setScene(const Scene& scene) {
    const std::vector<Rect> areas = changedAreas(scene_, scene, [this](const TextNode& text) {
        return host_ ? host_->inkOf(text) : text.frame;
    });
    const bool hasSameControls = scene_.controls == scene.controls;
    scene_ = scene;
    if (!areas.empty() && host_) host_->sceneChanged(areas);
    if (!hasSameControls && host_) host_->controlsChanged();
}

void CardStageLinux::beginMovement(Instant now) {
    if (movement_ && !movement_->begin) movement_->begin = now;
}

bool CardStageLinux::isMoving(Instant now) const {
    return movement_ && (!movement_->begin ||
                         secondsOf(now - *movement_->begin) < movement_->spring.settlingDuration());
}

Transform CardStageLinux::transformAt(Instant now) const {
    if (!isMoving(now)) return Transform::identity();
    const Transform& start = movement_->start;
    const double elapsed = movement_->begin ? secondsOf(now - *movement_->begin) : 0;
    const double left = 1 - movement_->spring.progress(elapsed);
    return {.scale = 1 + (start.scale - 1) * left,
            .centre = start.centre,
            .offset = {start.offset.x * left, start.offset.y * left}};
}

}  // namespace quorvane
