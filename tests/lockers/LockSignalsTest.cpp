#include "lockers/LockSignals.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace quorvane {
namespace {

using Names = std::vector<std::string>;

Names between(const LockSignals& before, const LockSignals& after) {
    Names names;
    for (const char* notice : noticesBetween(before, after))
        names.push_back(notice + std::string{"com.apple.screen"}.size());
    return names;
}

std::vector<LockSignals> everyState() {
    std::vector<LockSignals> states;
    for (int bits = 0; bits < 8; ++bits)
        states.push_back({(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0});
    return states;
}

TEST(LockSignals, SayWhetherItIsLockedAndWhetherItsFaceShows) {
    for (const LockSignals& state : everyState()) {
        EXPECT_EQ(state.isLocked(), state != LockSignals{});
        EXPECT_EQ(state.isLockUIShown(), state.hasLockerWindow);
    }
}

// Whoever only counts the notices knows the state at any time, whatever the history.
TEST(LockSignals, NeverRepeatOrContradict) {
    for (const LockSignals& before : everyState())
        for (const LockSignals& after : everyState()) {
            bool isLocked = before.isLocked();
            bool isShown = before.isLockUIShown();
            for (const std::string& notice : between(before, after)) {
                bool& state = notice.starts_with("Is") ? isLocked : isShown;
                const bool next = notice == "IsLocked" || notice == "LockUIIsShown";
                EXPECT_NE(std::exchange(state, next), next) << notice << " twice";
                EXPECT_TRUE(isLocked || !isShown) << "a lock's face on an open screen";
            }
            EXPECT_EQ(isLocked, after.isLocked());
            EXPECT_EQ(isShown, after.isLockUIShown());
        }
}

}  // namespace
}  // namespace quorvane
