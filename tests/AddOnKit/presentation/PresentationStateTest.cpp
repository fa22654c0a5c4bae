#include "AddOnKit/presentation/PresentationState.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace quorvane {
namespace {

// One letter for each field that is true, in the fields' order: Locked, UI shown, Delay elapsed,
// Allowed, Music.
constexpr PresentationState state(std::string_view letters) {
    return {.isLocked = letters.contains('L'),
            .isLockUIShown = letters.contains('U'),
            .delayElapsed = letters.contains('D'),
            .allowsPlayer = letters.contains('A'),
            .hasMusic = letters.contains('M')};
}

struct Row {
    std::string_view from;
    PresentationEvent event;
    std::string_view to;
};

// Each event from a state in which it matters and from one in which it must not.
const Row kTable[] = {
    {"", event::Link{true}, "A"},
    {"LUDAM", event::Link{false}, "LUDM"},
    {"LUDA", event::Music{true}, "LUDAM"},
    {"LUDAM", event::Music{false}, "LUDA"},
    {"AM", event::Locked{}, "LAM"},
    {"UD", event::Locked{}, "LU"},  // a new lock starts without the delay
    {"LUDAM", event::Locked{}, "LUDAM"},
    {"LUDAM", event::Unlocked{}, "AM"},
    {"U", event::Unlocked{}, ""},
    {"LU", event::DelayElapsed{}, "LUD"},
    {"L", event::DelayElapsed{}, "L"},
    {"", event::LockUIShown{}, "U"},
    {"LUDAM", event::LockUIShown{}, "LUDAM"},
    {"LUDAM", event::LockUIHidden{}, "LAM"},
    {"U", event::LockUIHidden{}, ""},
    {"UAM", event::Woke{true}, "LUAM"},
    {"LUDAM", event::Woke{false}, "AM"},
};

TEST(PresentationState, FollowsItsTable) {
    for (const Row& row : kTable)
        EXPECT_EQ(state(row.from).applying(row.event), state(row.to))
            << row.from << " by event " << row.event.index();
}

TEST(PresentationState, DerivesItsOutputs) {
    static_assert(state("LUDA").windowsWanted() && !state("LUDA").cardShown());
    static_assert(state("LUDAM").windowsWanted() && state("LUDAM").cardShown());
    static_assert(state("LU").awaitingDelay() && state("LUAM").cardExpected());
    for (const char* oneMissing : {"UAM", "LAM", "LUM", "LUA", "LUDAM"})
        EXPECT_FALSE(state(oneMissing).cardExpected()) << oneMissing;
}

TEST(PresentationState, ReachesTwentyStatesAndInEachTheDelayBelongsToTheLockUI) {
    const PresentationEvent everyEvent[] = {
        event::Link{false},    event::Link{true},    event::Music{false},  event::Music{true},
        event::Woke{false},    event::Woke{true},    event::Locked{},      event::Unlocked{},
        event::DelayElapsed{}, event::LockUIShown{}, event::LockUIHidden{}};
    std::vector<PresentationState> reached{PresentationState{}};
    for (std::size_t i = 0; i < reached.size(); ++i)
        for (const PresentationEvent& event : everyEvent) {
            const PresentationState next = reached[i].applying(event);
            EXPECT_TRUE(!next.delayElapsed || (next.isLocked && next.isLockUIShown));
            if (std::ranges::find(reached, next) == reached.end()) reached.push_back(next);
        }
    EXPECT_EQ(reached.size(), 20u);  // of 32
}

}  // namespace
}  // namespace quorvane
