// Accessibility of a scene: the changes to report between two scenes, and the control at a point.
#pragma once

#include <vector>

#include "drawing/Scene.hpp"

namespace quorvane {

struct AccessibilityChange {
    enum class Kind { disappeared, appeared, label, value };
    Kind kind;
    SceneControl::ID control;
    bool operator==(const AccessibilityChange&) const = default;
};

// Pure.

// Disappeared controls first, then appeared ones, then changed ones. Playback progress and the
// remaining time do not count as changes; clients query them.
std::vector<AccessibilityChange> accessibilityChanges(const std::vector<SceneControl>& from,
                                                      const std::vector<SceneControl>& to);
// The control at a point of the card; null when there is none.
const SceneControl* accessibleControlAt(const std::vector<SceneControl>& controls, Point point);

}  // namespace quorvane
