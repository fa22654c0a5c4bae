// A scene as assistive technology meets it: what it can do with a control, and what it has to be
// told when one scene follows another.
#pragma once

#include <span>
#include <vector>

#include "drawing/CardWindows.hpp"
#include "drawing/Scene.hpp"

namespace quorvane {

struct AccessibilityChange {
    enum class Kind { disappeared, appeared, label, number };
    Kind kind;
    SceneControl::ID control;
    bool operator==(const AccessibilityChange&) const = default;
};

// Pure.

// What can be asked of a control of this role, in the order in which it is offered.
std::span<const AccessibilityAction> accessibilityActions(SceneControl::Role role);
// Of controls that disappear first, of those that change last. That the music goes on is no change:
// the progress is told when it is asked for.
std::vector<AccessibilityChange> accessibilityChanges(const std::vector<SceneControl>& from,
                                                      const std::vector<SceneControl>& to);
// The control that is seen at a point of the card; null when there is none.
const SceneControl* accessibleControlAt(const std::vector<SceneControl>& controls, Point point);

}  // namespace quorvane
