// How often the state is requested and volumes are sent.
#include <gtest/gtest.h>

#include "AddOnKit/player/StateRefresher.hpp"
#include "AddOnKit/player/VolumeSender.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Values = std::vector<std::int64_t>;

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

struct VolumeSenderTest : testing::Test {
    void submit(std::initializer_list<std::int64_t> values, Duration pause = {}) {
        for (const std::int64_t value : values) {
            sender.submit(value);
            clock.advance(pause);
        }
    }

    ManualClock clock;
    Values sent;
    const VolumeSender::Send send = [this](std::int64_t value) { sent.push_back(value); };
    VolumeSender sender{clock.clock(), send};
};

TEST_F(VolumeSenderTest, SendsTheFirstAtOnceAndTheLastPendingAfterTheInterval) {
    submit({10, 11, 12}, 20ms);
    clock.advance(23'333'332ns);
    EXPECT_EQ(sent, (Values{10}));
    clock.advance(1ns);
    EXPECT_EQ(sent, (Values{10, 12}));
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(VolumeSenderTest, ADragSendsItsEndAndNoValueOfAnEarlierOne) {
    sender.flush();
    submit({3}, VolumeSender::kInterval);
    sender.beginDrag();
    sender.flush();
    EXPECT_EQ(sent, (Values{3}));
    submit({4});
    sender.flush();
    EXPECT_EQ(sent, (Values{3, 4, 4})) << "sent once more";
    submit({5, 6});
    sender.beginDrag();  // 6 is still pending
    sender.flush();
    sender.beginDrag();
    sender.flush();
    clock.advance(1s);
    EXPECT_EQ(sent, (Values{3, 4, 4, 6}));
}

TEST_F(VolumeSenderTest, SendsNothingOnceCancelled) {
    submit({1, 2});  // 2 is pending
    sender.cancel();
    EXPECT_EQ(clock.pendingTimers(), 0u);
    sender.flush();
    clock.advance(1s);
    EXPECT_EQ(sent, Values{1});
}

// The main thread was busy: the timer of an earlier value fires after a newer send.
TEST_F(VolumeSenderTest, ATimerThatFiresEarlyForThePendingValueWaitsTheRest) {
    std::function<void()> timer;
    Clock busy = clock.clock();
    busy.after = [&](Duration, std::function<void()> action) {
        timer = std::move(action);
        return Timer{[] {}};
    };
    VolumeSender late{busy, send};
    for (const std::int64_t value : {1, 2}) late.submit(value);
    clock.advance(90ms);
    for (const std::int64_t value : {3, 4}) late.submit(value);
    std::exchange(timer, nullptr)();
    EXPECT_EQ(sent, (Values{1, 3}));
    clock.advance(84ms);
    timer();
    EXPECT_EQ(sent, (Values{1, 3, 4}));
}

}  // namespace
}  // namespace quorvane
