#include "platform/linux/x11/LockerWindows.hpp"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/linux/files/Environment.hpp"

namespace quorvane {
namespace {

constexpr char kScreenSaverClass[] = "XScreenSaver";
constexpr Duration kPointerCheckInterval = std::chrono::milliseconds{250};
constexpr int kPointerChecks = 8;

bool isFound(const std::vector<FoundLocker>& found, std::uint32_t window) {
    return std::ranges::find(found, window, &FoundLocker::window) != found.end();
}

}  // namespace

LockerWindows::LockerWindows(X11Connection& x11, MonitorsLinux& monitors, const Clock& clock)
    : monitors_(monitors),
      clock_(clock),
      names_(LockerNames::parse(environmentVariable("QUORVANE_LOCKERS"),
                                environmentVariable("QUORVANE_OVERLAYS"))),
      topLevels_(x11, [this] {
          isStale_ = true;
          pointerChecksLeft_ = kPointerChecks;
      }) {
    evaluate();
    quiet_ = x11.observeQuiet([this] { evaluate(); });
    // Registered first, so that the zones are current when the other listeners ask for them.
    // `update` does not report changed zones: those listeners rebuild the cards, so the old cards
    // must not be moved first.
    monitorChanges_ = monitors_.observe([this] {
        promptSize_ = {};  // prompts differ on other monitors
        update();
    });
}

void LockerWindows::evaluate() {
    if (!isStale_) return;
    const Changes changes = update();
    if (changes.screens) monitors_.reportSoon();
    // Without a locker there is no card to move.
    if (changes.zones && !windows_.empty()) zoneListeners_.call();
}

LockerWindows::Changes LockerWindows::update() {
    isStale_ = false;
    const auto destroyed = topLevels_.takeDestroyed();
    const LockFacts facts = gather();
    auto found = find(facts);
    LockScene scene = sceneOf(facts, found);
    if (!found.empty()) promptSize_ = scene.lastPrompt = promptsSeen(scene);
    // Zones first, because the listeners of a new locker ask for them.
    const bool zonesChanged = std::exchange(zones_, keepClearZones(scene)) != zones_;
    // A lock whose windows are all gone is over, even if the next lock's windows already exist,
    // because the cards in the old windows are gone too.
    const bool isOver = std::ranges::none_of(windows_, [&](const FoundLocker& old) {
        return isFound(found, old.window) && !destroyed.contains(old.window);
    });
    if (isOver && !std::exchange(windows_, {}).empty()) listeners_.call();
    const bool wasUnlocked = windows_.empty();
    const bool windowsChanged = std::exchange(windows_, std::move(found)) != windows_;
    const bool screensChanged = changesScreens(destroyed) && !isOver;
    // The user's dots per inch change without an event, and matter only during a lock.
    if (wasUnlocked && windowsChanged) monitors_.refresh();
    if (windowsChanged) listeners_.call();
    return {zonesChanged, screensChanged};
}

// A card is gone when its locker's window is gone. A card can be made when a locker's window has
// reached another monitor.
bool LockerWindows::changesScreens(const std::set<xcb_window_t>& destroyed) {
    std::vector<xcb_window_t> now;
    for (const Rect& monitor : monitors_.layout().monitors) {
        const auto on = std::ranges::find_if(windows_, [&](const FoundLocker& locker) {
            return locker.frame.contains({monitor.midX(), monitor.midY()});
        });
        now.push_back(on == windows_.end() ? xcb_window_t{XCB_WINDOW_NONE} : on->window);
    }
    const std::vector<xcb_window_t> before = std::exchange(onMonitors_, std::move(now));
    return before != onMonitors_ || std::ranges::any_of(before, [&](xcb_window_t window) {
               return destroyed.contains(window);
           });
}

LockFacts LockerWindows::gather() {
    LockFacts facts;
    facts.monitors = monitors_.layout().monitors;
    facts.keyboard = topLevels_.keyboard();
    facts.names = names_;
    for (const FoundLocker& locker : windows_) facts.lastFound.push_back(locker.window);
    for (const auto& entry : topLevels_.windows())
        facts.windows.push_back({.window = entry.window,
                                 .client = topLevels_.clientOf(entry.window),
                                 .frame = entry.frame,
                                 .isMapped = entry.isMapped,
                                 .isOverrideRedirect = entry.isOverrideRedirect,
                                 .wasShown = entry.wasShown});
    describeClients(facts);
    return facts;
}

// Checks the pointer grab only if it decides the result. Repeats the check for a while, because
// some lockers grab the keyboard first.
std::vector<FoundLocker> LockerWindows::find(LockFacts facts) {
    nextPointerCheck_.reset();
    const auto without = findLockers(facts);
    facts.pointerIsHeld = true;
    auto with = findLockers(facts);
    if (with == without || topLevels_.pointerIsHeld()) return with;
    if (pointerChecksLeft_-- > 0)
        nextPointerCheck_ = clock_.after(kPointerCheckInterval, [this] {
            isStale_ = true;
            evaluate();
        });
    return without;
}

// Watches closely the windows that cover a whole screen, mapped or not yet, and describes their
// clients.
void LockerWindows::describeClients(LockFacts& facts) {
    std::set<std::uint32_t> clients;
    for (WindowFacts& window : facts.windows) {
        const bool isCandidate =
            isFound(windows_, window.window) ||
            (window.isOverrideRedirect && coversMonitor(window.frame, facts.monitors));
        if (!isCandidate) continue;
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
    // Needed only for clients that are recognised by their keyboard grab.
    const bool isHeld = facts.keyboard == KeyboardHold::isHeld;
    using Clients = std::set<std::uint32_t>;
    const Clients desktop = isHeld ? topLevels_.desktopClients() : Clients{};
    const Clients managed = isHeld ? topLevels_.managedClients() : Clients{};
    for (WindowFacts& window : facts.windows) {
        window.isOfDesktop = desktop.contains(window.client);
        window.isOfManaged = managed.contains(window.client);
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
    scene.lastPrompt = promptSize_;
    for (const FoundLocker& locker : found)
        scene.lockers.push_back(
            {locker.frame, locker.prompt, topLevels_.mappedChildren(locker.window, locker.frame)});
    std::vector<Rect> above;
    for (const WindowFacts& window : facts.windows) {
        if (isFound(found, window.window)) {
            // Windows above any locker window count, because the lowest may be on the prompt's
            // screen.
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
