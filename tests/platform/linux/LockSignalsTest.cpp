#include "platform/linux/LockSignals.hpp"

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

TEST(LockSignals, AreTheFourNoticesInTheirOrder) {
    constexpr LockSignals kOpen{};
    constexpr LockSignals kWindow{true, false, false};
    constexpr LockSignals kService{false, true, false};
    constexpr LockSignals kHint{false, false, true};
    constexpr LockSignals kAll{true, true, true};
    struct Case {
        LockSignals before;
        LockSignals after;
        Names notices;
    };
    const Case cases[] = {
        {kOpen, kWindow, {"IsLocked", "LockUIIsShown"}},
        {kOpen, kService, {"IsLocked"}},
        {kOpen, kHint, {"IsLocked"}},
        {kOpen, kAll, {"IsLocked", "LockUIIsShown"}},
        {kService, kHint, {}},
        {kService, kAll, {"LockUIIsShown"}},
        {kHint, kWindow, {"LockUIIsShown"}},
        {kWindow, kHint, {"LockUIIsHidden"}},
        {kAll, kService, {"LockUIIsHidden"}},
        {kAll, kOpen, {"LockUIIsHidden", "IsUnlocked"}},
        {kHint, kOpen, {"IsUnlocked"}},
    };
    for (const Case& each : cases) EXPECT_EQ(between(each.before, each.after), each.notices);
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
