#include "lockers/LockerRules.hpp"

#include <algorithm>
#include <array>
#include <iterator>
#include <ranges>

namespace quorvane {
namespace {

constexpr Size kIndicator{190, 190};  // i3lock's circle: a radius of 90 and 5 around it

constexpr std::string_view kNamedByTheUser;

struct KnownLocker {
    std::string_view className;
    std::string_view instance{};  // "" for any
    Size prompt = kIndicator;
    bool alsoBlanks = false;  // the same windows cover the screen when it is blank and not locked
};

constexpr std::array kKnownLockers = std::to_array<KnownLocker>({
    {.className = "i3lock"},
    {.className = "xsecurelock", .instance = "background"},
    {.className = "XScreenSaver", .prompt = {800, 300}, .alsoBlanks = true},
    {.className = "XLock"},
    {.className = "kscreenlocker_greet"},
    {.className = "Light-locker"},
    {.className = "Gnome-screensaver"},
    {.className = "Mate-screensaver"},
    {.className = "Cinnamon-screensaver"},
    {.className = "Xfce4-screensaver"},
    {.className = "Ukui-screensaver-dialog"},
    {.className = kNamedByTheUser},
});

// Pickers of areas, windows and programs. They cover the screen and grab the keyboard for a moment.
constexpr std::string_view kKnownOverlays[] = {"slop", "Rofi", "flameshot", "Xfce4-screenshooter"};

bool isOneOf(const auto& list, const auto& value) {
    return std::ranges::find(list, value) != std::ranges::end(list);
}

bool hasClassOf(const WindowFacts& window, const KnownLocker& locker, const LockFacts& facts) {
    if (locker.className == kNamedByTheUser) return isOneOf(facts.names.lockers, window.className);
    return window.className == locker.className;
}

// The known locker that a client belongs to, identified by any of its windows, mapped or not.
const KnownLocker* lockerOf(std::uint32_t client, const LockFacts& facts) {
    for (const KnownLocker& locker : kKnownLockers)
        for (const WindowFacts& window : facts.windows)
            if (window.client == client && hasClassOf(window, locker, facts)) return &locker;
    return nullptr;
}

bool isUpAs(const KnownLocker& locker, const WindowFacts& window, const LockFacts& facts) {
    if (!hasClassOf(window, locker, facts)) return false;
    if (!locker.instance.empty() && window.instance != locker.instance) return false;
    // Its windows may outlive the process that locks; the keyboard grab shows whether it still
    // runs.
    return !locker.alsoBlanks ||
           (facts.screenSaverIsLocked && facts.keyboard != KeyboardHold::isFree);
}

// Full-screen wallpapers and overlays are below ordinary windows; a lock screen never is.
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
                   window.frame.covers(monitor);
        });
    });
}

// Remote desktop viewers, virtual machines and games also have an ordinary window, now or before
// they went full-screen.
bool isOfApplication(const WindowFacts& window, const LockFacts& facts) {
    return window.isOfManaged || std::ranges::any_of(facts.windows, [&](const WindowFacts& other) {
               return other.client == window.client && !other.isOverrideRedirect && other.wasShown;
           });
}

bool isUpUnknown(const WindowFacts& window, const LockFacts& facts) {
    if (facts.keyboard != KeyboardHold::isHeld) return false;
    if (window.isOfDesktop || isOneOf(kKnownOverlays, window.className)) return false;
    if (isOneOf(facts.lastFound, window.window)) return true;
    return facts.pointerIsHeld && !isOfApplication(window, facts) &&
           coversEveryMonitor(window.client, facts) && !isBelowDesktop(window, facts.windows);
}

std::vector<std::string> splitAtCommas(std::string_view list) {
    std::vector<std::string> names;
    for (const auto name : std::views::split(list, ','))
        if (!name.empty()) names.emplace_back(name.begin(), name.end());
    return names;
}

}  // namespace

LockerNames LockerNames::parse(std::string_view lockers, std::string_view overlays) {
    return {splitAtCommas(lockers), splitAtCommas(overlays)};
}

std::vector<FoundLocker> findLockers(const LockFacts& facts) {
    std::vector<FoundLocker> found;
    for (const WindowFacts& window : facts.windows) {
        const bool isCandidate =
            isOneOf(facts.lastFound, window.window) ||
            (window.isOverrideRedirect && coversMonitor(window.frame, facts.monitors));
        if (!isCandidate || !window.isMapped || !window.isDrawable) continue;
        if (isOneOf(facts.names.overlays, window.className)) continue;
        const KnownLocker* known = lockerOf(window.client, facts);
        if (known ? isUpAs(*known, window, facts) : isUpUnknown(window, facts))
            found.push_back({window.window, window.frame, known ? known->prompt : kIndicator});
    }
    return found;
}

bool coversMonitor(const Rect& frame, const std::vector<Rect>& monitors) {
    return std::ranges::any_of(monitors,
                               [&](const Rect& monitor) { return frame.covers(monitor); });
}

}  // namespace quorvane
