#include "platform/linux/LockerRules.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

namespace quorvane {
namespace {

struct KnownLocker {
    std::string_view className;
    std::string_view instance;  // "" for any
    bool opensPrompt;
    bool alsoBlanks;  // the same windows stand when the screen is blank and not locked
};

constexpr std::array kKnownLockers = std::to_array<KnownLocker>({
    {"i3lock", "", false, false},
    {"xsecurelock", "background", true, false},
    {"XScreenSaver", "", true, true},
    {"XLock", "", false, false},
    {"kscreenlocker_greet", "", false, false},
    {"Light-locker", "", false, false},
    {"Gnome-screensaver", "", false, false},
    {"Mate-screensaver", "", false, false},
    {"Cinnamon-screensaver", "", false, false},
    {"Xfce4-screensaver", "", false, false},
    {"Ukui-screensaver-dialog", "", false, false},
});

// Pickers of areas, windows and programs that hold the keyboard over the whole screen for a moment.
constexpr std::string_view kKnownOverlays[] = {"slop", "Rofi", "flameshot"};

bool hasClassOf(const WindowFacts& window, const KnownLocker& locker) {
    return window.className == locker.className;
}

// The locker that a client is, told from any of its windows, mapped or not.
const KnownLocker* lockerOf(std::uint32_t client, const std::vector<WindowFacts>& windows) {
    for (const KnownLocker& locker : kKnownLockers)
        if (std::ranges::any_of(windows, [&](const WindowFacts& window) {
                return window.client == client && hasClassOf(window, locker);
            }))
            return &locker;
    return nullptr;
}

bool isKnownOverlay(const WindowFacts& window) {
    return std::ranges::find(kKnownOverlays, window.className) != std::end(kKnownOverlays);
}

bool isOneOf(const std::vector<std::uint32_t>& list, std::uint32_t window) {
    return std::ranges::find(list, window) != list.end();
}

bool isUpAs(const KnownLocker& locker, const WindowFacts& window, const LockFacts& facts) {
    if (!hasClassOf(window, locker)) return false;
    if (!locker.instance.empty() && window.instance != locker.instance) return false;
    // Its windows may outlive the process that guards them; the keyboard tells.
    return !locker.alsoBlanks ||
           (facts.screenSaverIsLocked && facts.keyboard != KeyboardHold::isFree);
}

// The wallpapers and overlays that cover everything stand below ordinary windows, a lock screen
// never does.
bool isBelowDesktop(const WindowFacts& window, const std::vector<WindowFacts>& windows) {
    for (const WindowFacts& above : windows) {
        if (above.window == window.window) return false;
        const bool isOrdinary = above.isOfDesktop || !above.isOverrideRedirect;
        if (above.isMapped && isOrdinary && above.frame.intersects(window.frame)) return true;
    }
    return false;
}

bool coversEveryMonitor(std::uint32_t client, const LockFacts& facts) {
    return std::ranges::all_of(facts.monitors, [&](const Rect& monitor) {
        return std::ranges::any_of(facts.windows, [&](const WindowFacts& window) {
            return window.client == client && window.isMapped && window.isOverrideRedirect &&
                   covers(window.frame, monitor);
        });
    });
}

bool isUpUnknown(const WindowFacts& window, const LockFacts& facts) {
    if (facts.keyboard != KeyboardHold::isHeld) return false;
    if (window.isOfDesktop || isKnownOverlay(window)) return false;
    if (isOneOf(facts.standing, window.window)) return true;
    return coversEveryMonitor(window.client, facts) && !isBelowDesktop(window, facts.windows);
}

}  // namespace

std::vector<FoundLocker> findLockers(const LockFacts& facts) {
    std::vector<FoundLocker> found;
    for (const WindowFacts& window : facts.windows) {
        const bool stood = isOneOf(facts.standing, window.window) && window.isMapped;
        if (!window.isDrawable || !(stood || isCandidate(window, facts.monitors))) continue;
        const KnownLocker* known = lockerOf(window.client, facts.windows);
        if (known ? isUpAs(*known, window, facts) : isUpUnknown(window, facts))
            found.push_back({window.window, window.frame, known && known->opensPrompt});
    }
    return found;
}

bool isCandidate(const WindowFacts& window, const std::vector<Rect>& monitors) {
    return window.isMapped && window.isOverrideRedirect &&
           std::ranges::any_of(monitors,
                               [&](const Rect& monitor) { return covers(window.frame, monitor); });
}

bool covers(const Rect& frame, const Rect& area) {
    return frame.minX() <= area.minX() && frame.minY() <= area.minY() &&
           frame.maxX() >= area.maxX() && frame.maxY() >= area.maxY();
}

}  // namespace quorvane
