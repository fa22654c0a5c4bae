// The lockers' current windows on the X server, and the areas that they need.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

#include "lockers/KeepClearZones.hpp"
#include "lockers/LockerRules.hpp"
#include "platform/Clock.hpp"
#include "platform/Listeners.hpp"
#include "platform/linux/x11/MonitorsLinux.hpp"
#include "platform/linux/x11/TopLevelWindows.hpp"
#include "platform/linux/x11/X11Connection.hpp"

namespace quorvane {

// Main thread only. Gathers the facts that the rules need and queries the server for nothing else:
// while no window covers a screen, events are processed without requests.
class LockerWindows {
public:
    LockerWindows(X11Connection& x11, MonitorsLinux& monitors, const Clock& clock);

    const std::vector<FoundLocker>& windows() const { return windows_; }
    Handle observe(std::function<void()> handler) { return listeners_.add(std::move(handler)); }
    // Root pixels.
    const std::vector<Rect>& zones() const { return zones_; }
    // Reports changed zones of a continuing lock. MonitorsLinux reports a change of the monitors;
    // the zones are up to date by then.
    Handle observeZones(std::function<void()> handler) {
        return zoneListeners_.add(std::move(handler));
    }

private:
    void evaluate();
    struct Changes {
        bool zones = false;
        bool screens = false;  // of a continuing lock: a card is gone or can be made
    };
    Changes update();
    LockFacts gather();
    std::vector<FoundLocker> find(LockFacts facts);
    bool changesScreens(const std::set<xcb_window_t>& destroyed);
    void describeClients(LockFacts& facts);
    void describeWindows(LockFacts& facts, const std::set<std::uint32_t>& clients);
    LockScene sceneOf(const LockFacts& facts, const std::vector<FoundLocker>& found);

    MonitorsLinux& monitors_;
    Clock clock_;
    LockerNames names_;
    TopLevelWindows topLevels_;
    bool isStale_ = true;
    std::vector<FoundLocker> windows_;
    std::vector<xcb_window_t> onMonitors_;  // the locker's window on each monitor
    std::vector<Rect> zones_;
    Size promptSize_;            // holds the prompts seen on these monitors
    int pointerChecksLeft_ = 0;  // remaining checks for a pointer grab
    Timer nextPointerCheck_;
    Listeners<> listeners_;
    Listeners<> zoneListeners_;
    Handle quiet_;
    Handle monitorChanges_;
};

}  // namespace quorvane
