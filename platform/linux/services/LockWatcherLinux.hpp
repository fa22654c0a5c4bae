// The Linux lock watcher: translates this system's signs of a lock into the lock notices and the
// other lock sources.
#pragma once

#include <functional>

#include "lockers/LockScreenDetector.hpp"
#include "lockers/LockSignals.hpp"
#include "platform/Listeners.hpp"
#include "platform/LockSources.hpp"
#include "platform/linux/bus/LogindLinux.hpp"
#include "platform/linux/bus/ScreenSaverSignals.hpp"
#include "platform/linux/services/HeadlessPlatform.hpp"

namespace quorvane {

// Main thread only. Delivers the four notices to this process's own observers.
class LockWatcherLinux {
public:
    LockWatcherLinux(HeadlessPlatform& services, LockScreenDetector detector);

    // The result refers to the watcher.
    LockSources sources();
    // Called when the screen becomes locked or unlocked, before the notice is delivered.
    Handle observeLock(std::function<void(bool isLocked)> handler) {
        return lockListeners_.add(std::move(handler));
    }

private:
    void update();
    LockSignals read() const;
    Handle observeWake(std::function<void()> handler);

    LocalNotices& notices_;
    LockScreenDetector detector_;
    Listeners<> wakeListeners_;
    Listeners<bool> lockListeners_;
    ScreenSaverSignals screenSavers_;
    LogindLinux logind_;
    LockSignals signals_;
    Handle lockerObservation_;
};

}  // namespace quorvane
