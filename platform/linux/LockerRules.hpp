// Which of the X server's top-level windows are lock screens. Pure values: what is known of the
// windows goes in, the lockers' windows come out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

// Whether some client holds the keyboard grabbed. Nothing tells how it was before the first notice.
enum class KeyboardHold { unknown, isFree, isHeld };

// One top-level window. Rectangles are root pixels, y growing downward.
struct WindowFacts {
    std::uint32_t window = 0;
    std::uint32_t client = 0;  // the same for all windows of one connection
    Rect frame;
    bool isMapped = false;
    bool isOverrideRedirect = false;
    bool isDrawable = true;    // can have visible contents and children
    bool isOfDesktop = false;  // of the window manager or the compositor
    std::string instance{};    // the two class names; "" where they were not asked for
    std::string className{};
};

struct LockFacts {
    std::vector<WindowFacts> windows;  // top one first
    std::vector<Rect> monitors;
    KeyboardHold keyboard = KeyboardHold::unknown;
    bool screenSaverIsLocked = false;     // what xscreensaver publishes: locked, not only blank
    std::vector<std::uint32_t> standing;  // the lockers' windows found last time
};

struct FoundLocker {
    std::uint32_t window = 0;
    Rect frame;
    // It asks for the password in a window of its own, and needs nothing else kept clear.
    bool opensPrompt = false;

    bool operator==(const FoundLocker&) const = default;
};

// Top one first.
//
// A locker covers at least one monitor with a mapped override-redirect window, and is known by its
// class or holds the keyboard. Of a client without a known class more is asked, since full-screen
// overlays of other kinds exist: it covers every monitor, nothing of the desktop is above it, and
// it is none of the overlays that are known. What was found once stays found while it is mapped: a
// monitor may grow before its locker does.
std::vector<FoundLocker> findLockers(const LockFacts& facts);

// Whether the window covers a monitor as a lock screen would; only of such windows, and of other
// windows of their clients, are class names and the like needed.
bool isCandidate(const WindowFacts& window, const std::vector<Rect>& monitors);

bool covers(const Rect& frame, const Rect& area);

}  // namespace quorvane
