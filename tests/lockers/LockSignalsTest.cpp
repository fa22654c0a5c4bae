#include "lockers/LockSignals.hpp"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>

namespace quorvane {
namespace {

// Whoever only counts the notices knows the state at any time, whatever the history.
TEST(LockSignals, NeverRepeatOrContradict) {
    const auto stateOf = [](int bits) {
        return LockSignals{(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0};
    };
    for (int change = 0; change < 64; ++change) {
        const LockSignals before = stateOf(change / 8), after = stateOf(change % 8);
        bool isLocked = before != LockSignals{};
        bool isShown = before.hasLockerWindow;
        for (const std::string_view notice : noticesBetween(before, after)) {
            const bool isOfLock = notice == kScreenIsLocked || notice == kScreenIsUnlocked;
            const bool next = notice == kScreenIsLocked || notice == kScreenLockUIIsShown;
            EXPECT_NE(std::exchange(isOfLock ? isLocked : isShown, next), next) << notice;
            EXPECT_TRUE(isLocked || !isShown) << "a lock's face on an open screen";
        }
        EXPECT_EQ(isLocked, after.isLocked());
        EXPECT_EQ(isLocked, after != LockSignals{});
        EXPECT_EQ(isShown, after.isLockUIShown());
        EXPECT_EQ(isShown, after.hasLockerWindow);
    }
}

}  // namespace
}  // namespace quorvane
