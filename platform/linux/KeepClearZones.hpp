// The areas of the screens that lockers need for themselves. Pure values.
#pragma once

#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

// What stands on the screens while they are locked. Root pixels.
struct LockScene {
    struct Locker {
        Rect frame;
        bool opensPrompt = false;    // asks for the password in a window of its own
        std::vector<Rect> children;  // mapped windows inside it that are not ours
    };
    std::vector<Locker> lockers;
    std::vector<Rect> dialogs;  // mapped override-redirect windows above the lockers' windows
    std::vector<Rect> monitors;
    double dotsPerInch = 96;

    bool operator==(const LockScene&) const = default;
};

// Of lockers that draw into their own window, i3lock's unlock indicator in the middle of each
// monitor; lockers that are not known get the same. Of all lockers, every window that is smaller
// than a monitor: those are prompts and messages. Without lockers there are no zones.
std::vector<Rect> keepClearZones(const LockScene& scene);

}  // namespace quorvane
