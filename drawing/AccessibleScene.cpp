#include "drawing/AccessibleScene.hpp"

#include <algorithm>

namespace quorvane {
namespace {

const SceneControl* find(const std::vector<SceneControl>& controls, SceneControl::ID id) {
    const auto found = std::ranges::find(controls, id, &SceneControl::id);
    return found == controls.end() ? nullptr : &*found;
}

}  // namespace

std::vector<AccessibilityChange> accessibilityChanges(const std::vector<SceneControl>& from,
                                                      const std::vector<SceneControl>& to) {
    using Kind = AccessibilityChange::Kind;
    std::vector<AccessibilityChange> changes;
    for (const SceneControl& control : from)
        if (!find(to, control.id)) changes.push_back({Kind::disappeared, control.id});
    for (const SceneControl& control : to)
        if (!find(from, control.id)) changes.push_back({Kind::appeared, control.id});
    for (const SceneControl& control : to) {
        const SceneControl* const before = find(from, control.id);
        if (!before) continue;
        if (before->label != control.label) changes.push_back({Kind::label, control.id});
        const bool runs =
            control.id == SceneControl::ID::progress || control.id == SceneControl::ID::remaining;
        if (before->value != control.value && !runs) changes.push_back({Kind::value, control.id});
    }
    return changes;
}

const SceneControl* accessibleControlAt(const std::vector<SceneControl>& controls, Point point) {
    const auto found = std::ranges::find_if(
        controls, [&](const SceneControl& control) { return control.frame.contains(point); });
    return found == controls.end() ? nullptr : &*found;
}

}  // namespace quorvane
