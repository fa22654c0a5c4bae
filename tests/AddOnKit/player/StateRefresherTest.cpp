#include "AddOnKit/player/StateRefresher.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

struct Fixture {
    ManualClock clock;
    int refreshes = 0;
    std::function<void()> during;  // what happens inside a refresh
    std::unique_ptr<StateRefresher> refresher =
        std::make_unique<StateRefresher>(clock.clock(), [this] {
            ++refreshes;
            if (during) during();
        });

    int countOver(Duration duration) {
        refreshes = 0;
        clock.advance(duration);
        return refreshes;
    }
};

TEST(StateRefresher, PollsOnlyWhileActive) {
    Fixture f;
    f.refresher->setActive(true);
    f.refresher->setActive(true);
    EXPECT_EQ(f.refreshes, 1);
    EXPECT_EQ(f.clock.pendingTimers(), 1u);
    EXPECT_EQ(f.countOver(1999ms), 0);
    EXPECT_EQ(f.countOver(1ms), 1);
    EXPECT_EQ(f.countOver(10s), 5);
    f.refresher->setActive(false);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    EXPECT_EQ(f.countOver(10s), 0);
    f.refresher->setActive(true);
    EXPECT_EQ(f.refreshes, 1);
}

TEST(StateRefresher, ABurstOfCommandsRefreshesOnceAfterTheLast) {
    Fixture f;
    for (int i = 0; i < 3; ++i) {
        f.refresher->nudge();
        EXPECT_EQ(f.countOver(300ms), 0);
    }
    EXPECT_EQ(f.countOver(499ms), 0);
    EXPECT_EQ(f.countOver(1ms), 1);
    EXPECT_EQ(f.countOver(10s), 0);
    // A poll that is due with it makes no second one.
    f.refresher->setActive(true);
    f.clock.advance(900ms);
    f.refresher->nudge();
    EXPECT_EQ(f.countOver(1100ms), 1);
}

TEST(StateRefresher, PollsEveryTwoSecondsOnAverageWhenItSharesWakeUps) {
    Fixture f;
    Timer other;
    std::function<void()> tick = [&] { other = f.clock.clock().after(1001ms, tick); };
    f.clock.advance(300ms);
    tick();
    f.refresher->setActive(true);
    EXPECT_NEAR(f.countOver(100s), 50, 1);
}

TEST(StateRefresher, StopsForGood) {
    Fixture f;
    f.refresher->setActive(true);
    f.refresher->nudge();
    f.refresher->stop();
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    f.refreshes = 0;
    f.refresher->setActive(true);
    f.refresher->nudge();
    EXPECT_EQ(f.refreshes, 0);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
}

TEST(StateRefresher, ARefreshThatTakesItsTimeIsFollowedByTheWholePause) {
    Fixture f;
    f.during = [&] { f.clock.advance(3s); };
    f.refresher->setActive(true);
    f.during = nullptr;
    EXPECT_EQ(f.countOver(1999ms), 0);
    EXPECT_EQ(f.countOver(1ms), 1);
}

TEST(StateRefresher, ARefreshMayTurnTheRefresherOffAndOnOrDestroyIt) {
    Fixture f;
    f.during = [&] { f.refresher->setActive(false); };
    f.refresher->setActive(true);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    f.during = [&] {
        f.during = nullptr;
        f.refresher->setActive(false);
        f.refresher->setActive(true);
    };
    f.refresher->setActive(true);
    EXPECT_EQ(f.clock.pendingTimers(), 1u);
    f.refresher->nudge();
    f.during = [&] { f.refresher.reset(); };
    EXPECT_EQ(f.countOver(10s), 1);  // the nudge's; the poll went with the refresher
    f.refresher = std::make_unique<StateRefresher>(f.clock.clock(), [&] {
        f.refresher.reset();
        ++f.refreshes;  // the action is still whole
    });
    f.refresher->setActive(true);
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
}

}  // namespace
}  // namespace quorvane
