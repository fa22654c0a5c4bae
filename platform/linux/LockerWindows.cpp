#include "platform/linux/LockerWindows.hpp"

#include <algorithm>
#include <set>
#include <utility>

namespace quorvane {
namespace {

constexpr char kScreenSaverClass[] = "XScreenSaver";

bool isFound(const std::vector<FoundLocker>& found, std::uint32_t window) {
    return std::ranges::find(found, window, &FoundLocker::window) != found.end();
}

}  // namespace

LockerWindows::LockerWindows(X11Connection& x11, MonitorsLinux& monitors)
    : monitors_(monitors), topLevels_(x11, [this] { isStale_ = true; }) {
    evaluate();
    quiet_ = x11.observeQuiet([this] { evaluate(); });
    monitorChanges_ = monitors_.observe([this] { isStale_ = true; });
}

void LockerWindows::noteOwnWindow(xcb_window_t window, bool exists) {
    topLevels_.noteOwn(window, exists);
    isStale_ = true;
}

void LockerWindows::evaluate() {
    if (!std::exchange(isStale_, false)) return;
    const auto destroyed = topLevels_.takeDestroyed();
    const LockFacts facts = gather();
    const auto found = findLockers(facts);
    std::vector<LockerWindow> windows;
    for (const FoundLocker& locker : found) windows.push_back({locker.window, locker.frame});
    // Zones first: who hears of a new locker asks for them.
    const bool zonesChanged =
        std::exchange(zones_, keepClearZones(sceneOf(facts, found))) != zones_;
    // A lock whose windows have all gone is over, also where the next one's stand already: what
    // stood in them has gone with them.
    const bool isOver = std::ranges::none_of(windows_, [&](const LockerWindow& old) {
        return isFound(found, old.window) && !destroyed.contains(old.window);
    });
    if (isOver && !std::exchange(windows_, {}).empty()) listeners_.call();
    const bool windowsChanged = std::exchange(windows_, std::move(windows)) != windows_;
    if (windowsChanged) listeners_.call();
    if (zonesChanged) zoneListeners_.call();
}

LockFacts LockerWindows::gather() {
    LockFacts facts;
    facts.monitors = monitors_.layout().monitors;
    facts.keyboard = topLevels_.keyboard();
    for (const LockerWindow& locker : windows_) facts.standing.push_back(locker.window);
    for (const auto& entry : topLevels_.windows())
        facts.windows.push_back({.window = entry.window,
                                 .client = topLevels_.clientOf(entry.window),
                                 .frame = entry.frame,
                                 .isMapped = entry.isMapped,
                                 .isOverrideRedirect = entry.isOverrideRedirect});
    describeClients(facts);
    return facts;
}

// Looks closer at the clients that have a window over a whole screen, mapped or not yet.
void LockerWindows::describeClients(LockFacts& facts) {
    std::set<std::uint32_t> clients;
    for (WindowFacts& window : facts.windows) {
        WindowFacts mapped = window;
        mapped.isMapped = true;
        const bool stood = std::ranges::find(facts.standing, window.window) != facts.standing.end();
        if (!stood && !isCandidate(mapped, facts.monitors)) continue;
        topLevels_.watchClosely(window.window);
        if (window.isMapped) clients.insert(window.client);
    }
    describeWindows(facts, clients);
    const bool hasScreenSaver = std::ranges::find(facts.windows, kScreenSaverClass,
                                                  &WindowFacts::className) != facts.windows.end();
    topLevels_.followScreenSaver(hasScreenSaver);
    facts.screenSaverIsLocked = hasScreenSaver && topLevels_.screenSaverIsLocked();
}

void LockerWindows::describeWindows(LockFacts& facts, const std::set<std::uint32_t>& clients) {
    if (clients.empty()) return;
    // Whose windows these are matters only to clients that are told by their hold of the keyboard.
    const auto desktop = facts.keyboard == KeyboardHold::isHeld ? topLevels_.desktopClients()
                                                                : std::set<std::uint32_t>{};
    for (WindowFacts& window : facts.windows) {
        window.isOfDesktop = desktop.contains(window.client);
        if (!clients.contains(window.client)) continue;
        const auto* details = topLevels_.details(window.window);
        window.isDrawable = details && details->isDrawable;
        if (!details) continue;
        window.instance = details->instance;
        window.className = details->className;
    }
}

LockScene LockerWindows::sceneOf(const LockFacts& facts, const std::vector<FoundLocker>& found) {
    LockScene scene;
    if (found.empty()) return scene;
    scene.monitors = facts.monitors;
    scene.dotsPerInch = monitors_.dotsPerInch();
    for (const FoundLocker& locker : found)
        scene.lockers.push_back({locker.frame, locker.opensPrompt,
                                 topLevels_.mappedChildren(locker.window, locker.frame)});
    std::vector<Rect> above;
    for (const WindowFacts& window : facts.windows) {
        if (isFound(found, window.window)) {
            // What is above any of them counts: the lowest may be the one on the prompt's screen.
            scene.dialogs.insert(scene.dialogs.end(), above.begin(), above.end());
            above.clear();
        } else if (window.isMapped && window.isOverrideRedirect) {
            const auto* details = topLevels_.details(window.window);
            if (details && details->isDrawable) above.push_back(window.frame);
        }
    }
    return scene;
}

}  // namespace quorvane
