// The areas of the screens that lockers need for themselves. Pure values.
#pragma once

#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

// What is on the screens while they are locked. Root pixels.
struct LockScene {
    struct Locker {
        Rect frame;
        Size prompt;                 // what it needs in a monitor's middle, at 96 dots per inch
        std::vector<Rect> children;  // mapped windows inside it that are not ours
    };
    std::vector<Locker> lockers;
    std::vector<Rect> dialogs;  // mapped override-redirect windows above the lockers' windows
    std::vector<Rect> monitors;
    double dotsPerInch = 96;
    Size lastPrompt{};  // the size that `promptsSeen` returned last

    bool operator==(const LockScene&) const = default;
};

// The size about a monitor's middle that holds every prompt there now, and `lastPrompt`.
Size promptsSeen(const LockScene& scene);

// In the middle of each monitor the area in which the locker asks for the password: kept from the
// start, so that the card need not move when the prompt opens. Also every window that is smaller
// than a monitor: those are prompts and messages. Without lockers there are no zones.
std::vector<Rect> keepClearZones(const LockScene& scene);

}  // namespace quorvane
