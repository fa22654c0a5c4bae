#include "AddOnKit/card/VolumeSlider.hpp"

#include <algorithm>
#include <cmath>

#include "AddOnKit/card/FilledTrack.hpp"
#include "AddOnKit/card/PlayerLayout.hpp"
#include "AddOnKit/card/PlayerStrings.hpp"

namespace quorvane {
namespace {

using PlayerLayout::kVolumeThickness;

constexpr std::int64_t kStep = 5;  // for assistive technology
constexpr double kFullVolume = 100;
constexpr double kDraggedThickness = 10;
constexpr double kFillOpacity = 0.8;
constexpr double kDraggedFillOpacity = 0.95;
constexpr double kSmallestTarget = 34;  // because the track alone would be hard to hit
constexpr Duration kThickeningResponse = std::chrono::milliseconds{250};

}  // namespace

std::int64_t VolumeSlider::value(double x, double width, bool isRightToLeft) {
    const double fraction = std::clamp(width > 1 ? x / width : x, 0.0, 1.0);
    return static_cast<std::int64_t>((isRightToLeft ? 1 - fraction : fraction) * kFullVolume);
}

void VolumeSlider::dragChanged(double x, double width) const {
    if (!model.isDraggingVolume.get()) model.beginVolumeDrag();
    const std::int64_t volume = value(x, width, isRightToLeft);
    if (volume == model.volume.get()) return;
    model.volume.set(volume);
    if (const auto action = actions.setVolume) action(volume);
}

void VolumeSlider::dragEnded() const {
    model.endVolumeDrag();
    if (const auto action = actions.endVolume) action();
}

void VolumeSlider::adjust(AccessibilityAction step) const {
    if (step == AccessibilityAction::press) return;
    const std::int64_t change = step == AccessibilityAction::increment ? kStep : -kStep;
    setNumber(static_cast<double>(model.volume.get() + change));
}

void VolumeSlider::setNumber(double volume) const {
    if (std::isnan(volume)) return;
    const auto wanted = static_cast<std::int64_t>(std::clamp(volume, 0.0, kFullVolume));
    model.setVolume(wanted);
    if (const auto action = actions.setVolume) action(wanted);
}

void VolumeSlider::draw(Scene& scene, const Rect& frame, const PlayerModel& model,
                        double thickening) {
    const double thickness = kVolumeThickness + (kDraggedThickness - kVolumeThickness) * thickening;
    const Rect track{frame.x, frame.midY() - thickness / 2, frame.width, thickness};
    const double filled = frame.width * static_cast<double>(model.volume.get()) / kFullVolume;
    drawFilledTrack(scene, track, filled,
                    model.isDraggingVolume.get() ? kDraggedFillOpacity : kFillOpacity);
}

SceneControl VolumeSlider::control(const Rect& frame, const PlayerModel& model,
                                   const Localized& localized) {
    const double growth = std::max(kSmallestTarget - frame.height, 0.0);
    return {.id = SceneControl::ID::volume,
            .role = SceneControl::Role::slider,
            .frame = {frame.x, frame.y - growth / 2, frame.width, frame.height + growth},
            .label = localized(PlayerStrings::kVolume.key),
            // Not a text, which tools/macos/check-bundle would take for a log format.
            .value = std::to_string(model.volume.get()) + ' ' + '%',
            .number = static_cast<double>(model.volume.get()),
            .maximum = kFullVolume,
            .step = kStep};
}

void VolumeSlider::thicken(Transition& thickening, bool isDragging, Instant now) {
    thickening.moveTo(isDragging ? 1 : 0, Transition::Curve::spring, kThickeningResponse, now);
}

}  // namespace quorvane
