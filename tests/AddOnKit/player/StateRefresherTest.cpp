#include "AddOnKit/player/StateRefresher.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

struct StateRefresherTest : testing::Test {
    int countOver(Duration duration) {
        refreshes = 0;
        clock.advance(duration);
        return refreshes;
    }

    ManualClock clock;
    int refreshes = 0;
    std::function<void()> during = [] {};  // runs inside a refresh
    StateRefresher refresher{clock.clock(), [this] {
                                 ++refreshes;
                                 const auto action = during;  // a copy, since it may replace itself
                                 action();
                             }};
};

TEST_F(StateRefresherTest, PollsWhileActiveAndOnceAfterABurstOfCommands) {
    refresher.setActive(true);
    refresher.setActive(true);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(countOver(1999ms), 0);
    EXPECT_EQ(countOver(1ms), 1);
    clock.advance(200ms);
    refresher.nudge();  // due at the same time as a poll, which serves for both
    EXPECT_EQ(countOver(1800ms), 1);
    EXPECT_EQ(countOver(100s), 50);
    refresher.setActive(false);
    EXPECT_EQ(clock.pendingTimers(), 0u);
    for (int i = 0; i < 3; ++i) {
        refresher.nudge();
        EXPECT_EQ(countOver(300ms), 0);
    }
    EXPECT_EQ(countOver(499ms), 0);
    EXPECT_EQ(countOver(1ms), 1);
    for (const bool isStopped : {false, true}) {
        refresher.setActive(true);
        refresher.nudge();
        EXPECT_EQ(clock.pendingTimers(), isStopped ? 0u : 2u);
        refresher.stop();
        EXPECT_EQ(clock.pendingTimers(), 0u);
    }
}

TEST_F(StateRefresherTest, PollsEveryTwoSecondsOnAverageWhenItSharesWakeUps) {
    Timer other;
    std::function<void()> tick = [&] { other = clock.clock().after(1001ms, tick); };
    clock.advance(300ms);
    tick();
    refresher.setActive(true);
    EXPECT_NEAR(countOver(100s), 50, 1);
}

TEST_F(StateRefresherTest, ARefreshMayTakeLongOrEndThePolling) {
    during = [&] { clock.advance(1s); };
    refresher.setActive(true);
    during = [] {};
    EXPECT_EQ(countOver(1999ms), 0) << "the whole pause follows";
    EXPECT_EQ(countOver(1ms), 1);
    during = [&] {
        during = [] {};
        refresher.setActive(false);
        refresher.setActive(true);
    };
    EXPECT_EQ(countOver(2s), 2);
    EXPECT_EQ(clock.pendingTimers(), 1u);
    during = [&] { refresher.setActive(false); };
    EXPECT_EQ(countOver(10s), 1);
}

}  // namespace
}  // namespace quorvane
