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
    bool wasShown = false;     // mapped at some time, perhaps inside a window manager's frame
    bool isDrawable = true;    // can have visible contents and children
    bool isOfDesktop = false;  // of the window manager or the compositor
    bool isOfManaged = false;  // its client has a window that the window manager lists
    std::string instance{};    // the two class names; "" where they were not asked for
    std::string className{};
};

// Classes of windows that the user names.
struct LockerNames {
    std::vector<std::string> lockers;
    std::vector<std::string> overlays;

    // From lists with commas; null for none.
    static LockerNames parse(const char* lockers, const char* overlays);
};

struct LockFacts {
    std::vector<WindowFacts> windows;  // top one first
    std::vector<Rect> monitors;
    KeyboardHold keyboard = KeyboardHold::unknown;
    bool pointerIsHeld = false;
    LockerNames names{};
    bool screenSaverIsLocked = false;     // what xscreensaver publishes: locked, not only blank
    std::vector<std::uint32_t> standing;  // the lockers' windows found last time
};

struct FoundLocker {
    std::uint32_t window = 0;
    Rect frame;
    // What it needs in the middle of a monitor to ask for the password, at 96 dots per inch.
    Size prompt;

    bool operator==(const FoundLocker&) const = default;
};

// Top one first.
//
// A locker covers at least one monitor with a mapped override-redirect window. Its class is known
// or named by the user, or the keyboard is held and more evidence excludes full-screen overlays of
// other kinds: the pointer is held too, the client covers every monitor, nothing of the desktop is
// above it, and it never showed an ordinary window. A locker stays found while it is mapped (an
// unknown one: while the keyboard is held), because a monitor may grow before its locker does.
std::vector<FoundLocker> findLockers(const LockFacts& facts);

// Whether the window covers a monitor as a lock screen would; only of such windows, and of other
// windows of their clients, are class names and the like needed.
bool isCandidate(const WindowFacts& window, const std::vector<Rect>& monitors);

bool covers(const Rect& frame, const Rect& area);

}  // namespace quorvane
