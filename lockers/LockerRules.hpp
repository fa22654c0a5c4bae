// Rules that find the lock screens among the X server's top-level windows. Pure values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/Geometry.hpp"

namespace quorvane {

// Whether a client has grabbed the keyboard. Unknown until the first notice.
enum class KeyboardHold { unknown, isFree, isHeld };

// One top-level window. Rectangles are root pixels, y growing downward.
struct WindowFacts {
    std::uint32_t window = 0;
    std::uint32_t client = 0;  // the same for all windows of one connection
    Rect frame;
    bool isMapped = false;
    bool isOverrideRedirect = false;
    bool wasShown = false;     // mapped at some time, possibly inside a window manager's frame
    bool isDrawable = true;    // can have visible contents and children
    bool isOfDesktop = false;  // of the window manager or the compositor
    bool isOfManaged = false;  // its client has a window that the window manager lists
    std::string instance{};    // the two class names; "" if not queried
    std::string className{};
};

// Window classes that the user names.
struct LockerNames {
    std::vector<std::string> lockers;
    std::vector<std::string> overlays;

    // Parses comma-separated lists.
    static LockerNames parse(std::string_view lockers, std::string_view overlays);
};

struct LockFacts {
    std::vector<WindowFacts> windows;  // topmost first
    std::vector<Rect> monitors;
    KeyboardHold keyboard = KeyboardHold::unknown;
    bool pointerIsHeld = false;
    LockerNames names{};
    bool screenSaverIsLocked = false;      // published by xscreensaver: locked, not only blank
    std::vector<std::uint32_t> lastFound;  // the lockers' windows
};

struct FoundLocker {
    std::uint32_t window = 0;
    Rect frame;
    // The space its password prompt needs in a monitor's centre, at 96 dots per inch.
    Size prompt;

    bool operator==(const FoundLocker&) const = default;
};

// Topmost first.
//
// A locker covers at least one monitor with a mapped override-redirect window. Either its class is
// known or named by the user, or the keyboard is grabbed and further evidence excludes other
// full-screen overlays: the pointer is grabbed too, the client covers every monitor, no desktop
// window is above it, and it never showed an ordinary window. A locker stays found while it is
// mapped (an unknown one: while the keyboard is grabbed), because a monitor may grow before its
// locker does.
std::vector<FoundLocker> findLockers(const LockFacts& facts);

// Whether the frame covers a whole monitor. Class names and other details are needed only for the
// override-redirect windows that do, and for other windows of their clients.
bool coversMonitor(const Rect& frame, const std::vector<Rect>& monitors);

}  // namespace quorvane
