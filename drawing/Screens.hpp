// The screens, in global points with y growing upward and the origin at the first screen's
// bottom-left corner.
#pragma once

#include <functional>
#include <vector>

#include "drawing/Geometry.hpp"
#include "platform/Handle.hpp"

namespace quorvane {

struct Screen {
    Rect frame;          // points
    double scale = 1.0;  // pixels per point
    // Areas that the lock screen itself needs on this screen, same coordinates as `frame`. Empty
    // where the system itself keeps such areas free.
    std::vector<Rect> keepClear = {};

    bool operator==(const Screen&) const = default;
};

// Reasons why a card is not visible. Several may hold at once.
enum class Unseen {
    displaysAsleep,
    sessionInBackground,
    covered,  // this card only
};

// Main thread only. `observeChanges` reports a changed set of screens or scales; one
// reconfiguration may cause several notices. `observeKeepClear` reports a change of keep-clear
// areas only. `observeUnseen` reports when a reason begins or ceases to hold for all screens.
struct Screens {
    std::function<std::vector<Screen>()> list;
    std::function<Handle(std::function<void()> handler)> observeChanges;
    std::function<Handle(std::function<void()> handler)> observeKeepClear;
    std::function<Handle(std::function<void(Unseen reason, bool holds)> handler)> observeUnseen;
};

}  // namespace quorvane
