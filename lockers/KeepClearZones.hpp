// Rules for the areas of the screens that lockers need for themselves. Pure values.
#pragma once

#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

// The windows and monitors of a locked screen. Root pixels.
struct LockScene {
    struct Locker {
        Rect frame;
        Size prompt;                 // space it needs in a monitor's centre, at 96 dots per inch
        std::vector<Rect> children;  // mapped windows inside it that are not ours
    };
    std::vector<Locker> lockers;
    std::vector<Rect> dialogs;  // mapped override-redirect windows above the lockers' windows
    std::vector<Rect> monitors;
    double dotsPerInch = 96;
    Size lastPrompt{};  // the last result of `promptsSeen`

    bool operator==(const LockScene&) const = default;
};

// The size around a monitor's centre that holds `lastPrompt` and every current prompt of at most
// three quarters of the monitor.
Size promptsSeen(const LockScene& scene);

// The zones are the prompt area in the centre of each monitor, reserved from the start so that the
// card need not move when the prompt opens, and every window smaller than a monitor, because those
// are prompts and messages. Without lockers there are no zones.
std::vector<Rect> keepClearZones(const LockScene& scene);

}  // namespace quorvane
