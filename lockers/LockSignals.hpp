// The Linux signs of a lock, and their translation to the four lock notices. Pure values.
#pragma once

#include <vector>

#include "platform/LockSources.hpp"

namespace quorvane {

struct LockSignals {
    bool hasLockScreen = false;        // a lock screen is detected
    bool screenSaverIsActive = false;  // a desktop's screen-saver service is active
    bool sessionSaysLocked = false;    // the login manager's hint
    bool isDetectorGone = false;       // the detecting process is gone

    // Any of the three, because a locker may announce nothing, and a lock may be announced without
    // a window visible to this process.
    constexpr bool isLocked() const {
        return hasLockScreen || screenSaverIsActive || sessionSaysLocked;
    }
    // Only then can a card appear.
    constexpr bool isLockUIShown() const { return hasLockScreen; }

    constexpr bool operator==(const LockSignals&) const = default;
};

// The notices for the change from one state to the next, in order: the screen is locked before the
// lock UI is shown, and the lock UI is hidden before the screen is unlocked. A lock screen that can
// no longer be observed does not count as unlocked.
constexpr std::vector<const char*> noticesBetween(const LockSignals& before,
                                                  const LockSignals& after) {
    std::vector<const char*> notices;
    if (!before.isLocked() && after.isLocked()) notices.push_back(kScreenIsLocked);
    if (!before.isLockUIShown() && after.isLockUIShown()) notices.push_back(kScreenLockUIIsShown);
    if (before.isLockUIShown() && !after.isLockUIShown()) notices.push_back(kScreenLockUIIsHidden);
    const bool mayStillBeLocked = before.hasLockScreen && after.isDetectorGone;
    if (before.isLocked() && !after.isLocked() && !mayStillBeLocked)
        notices.push_back(kScreenIsUnlocked);
    return notices;
}

}  // namespace quorvane
