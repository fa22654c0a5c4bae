#include "lockers/LockSignals.hpp"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>

namespace quorvane {
namespace {

// A receiver that only follows the notices always knows the state, after any history. The exception
// is a lock screen that can no longer be observed, because that is not an unlock.
TEST(LockSignals, NeverRepeatOrContradict) {
    const auto stateOf = [](int bits) {
        return LockSignals{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0, (bits & 8) != 0};
    };
    for (int change = 0; change < 256; ++change) {
        const LockSignals before = stateOf(change / 16), after = stateOf(change % 16);
        bool isLocked = before.isLocked();
        bool isShown = before.hasLockScreen;
        for (const std::string_view notice : noticesBetween(before, after)) {
            const bool isOfLock = notice == kScreenIsLocked || notice == kScreenIsUnlocked;
            const bool next = notice == kScreenIsLocked || notice == kScreenLockUIIsShown;
            EXPECT_NE(std::exchange(isOfLock ? isLocked : isShown, next), next) << notice;
            EXPECT_TRUE(isLocked || !isShown) << "the lock's UI is shown on an unlocked screen";
        }
        const bool isKept = before.hasLockScreen && after.isDetectorGone;
        EXPECT_EQ(isLocked, after.isLocked() || isKept);
        EXPECT_EQ(isShown, after.isLockUIShown());
        EXPECT_EQ(isShown, after.hasLockScreen);
    }
}

}  // namespace
}  // namespace quorvane
