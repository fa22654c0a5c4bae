#include "AddOnKit/player/VolumeSender.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Values = std::vector<std::int64_t>;

struct VolumeSenderTest : testing::Test {
    void submit(std::initializer_list<std::int64_t> values, Duration pause = {}) {
        for (const std::int64_t value : values) {
            sender->submit(value);
            clock.advance(pause);
        }
    }

    ManualClock clock;
    Values sent;
    std::function<void(std::int64_t)> during = [](std::int64_t) {};  // runs inside a send
    std::unique_ptr<VolumeSender> sender =
        std::make_unique<VolumeSender>(clock.clock(), [this](std::int64_t value) {
            during(value);
            sent.push_back(value);
        });
};

TEST_F(VolumeSenderTest, SendsTheFirstAtOnceAndTheLastPendingAfterTheInterval) {
    submit({10, 11, 12}, 20ms);
    clock.advance(23'333'332ns);
    EXPECT_EQ(sent, (Values{10}));
    clock.advance(1ns);
    EXPECT_EQ(sent, (Values{10, 12}));
    EXPECT_EQ(clock.pendingTimers(), 0u);
    sent.clear();
    for (int i = 0; i < 1000; ++i) submit({i}, 1ms);
    EXPECT_EQ(sent.size(), 12u) << "in a second";
    EXPECT_EQ(sent.back(), 999);
}

TEST_F(VolumeSenderTest, ADragSendsItsEndAndNoValueOfAnEarlierOne) {
    sender->flush();
    submit({3}, VolumeSender::kInterval);
    sender->beginDrag();
    sender->flush();
    EXPECT_EQ(sent, (Values{3}));
    submit({4});
    sender->flush();
    EXPECT_EQ(sent, (Values{3, 4, 4})) << "sent once more";
    submit({5, 6});
    sender->beginDrag();  // 6 is still pending
    sender->flush();
    sender->beginDrag();
    sender->flush();
    clock.advance(1s);
    EXPECT_EQ(sent, (Values{3, 4, 4, 6}));
}

TEST_F(VolumeSenderTest, SendsNothingOnceCancelledOrDestroyed) {
    submit({1, 2});
    sender->cancel();
    sender->flush();
    submit({3});  // pending
    sender->cancel();
    sender->beginDrag();
    sender->flush();
    EXPECT_EQ(clock.pendingTimers(), 0u);
    clock.advance(1s);
    submit({4, 5});
    sender.reset();
    EXPECT_EQ(clock.pendingTimers(), 0u);
    EXPECT_EQ(sent, (Values{1, 4}));
}

// The main thread was busy: the timer of an earlier value fires after a newer send.
TEST_F(VolumeSenderTest, ATimerThatFiresEarlyForThePendingValueWaitsTheRest) {
    std::vector<std::function<void()>> timers;
    Instant now{};
    const Clock busy{.now = [&] { return now; },
                     .after =
                         [&](Duration, std::function<void()> action) {
                             timers.push_back(std::move(action));
                             return Timer{[] {}};
                         },
                     .afterAbout = {}};
    VolumeSender late{busy, [&](std::int64_t value) { sent.push_back(value); }};
    late.submit(1);
    late.submit(2);
    now += 90ms;
    late.submit(3);
    late.submit(4);
    ASSERT_EQ(timers.size(), 1u);
    timers[0]();
    EXPECT_EQ(sent, (Values{1, 3}));
    ASSERT_EQ(timers.size(), 2u);
    now += 84ms;
    timers[1]();
    EXPECT_EQ(sent, (Values{1, 3, 4}));
}

TEST_F(VolumeSenderTest, SendingMayReenterOrDestroyTheSender) {
    during = [&](std::int64_t value) {
        if (value < 4) sender->submit(value + 1);
        if (value == 4) sender.reset();
    };
    submit({1}, 1s);
    EXPECT_EQ(sent, (Values{1, 2, 3, 4}));
}

}  // namespace
}  // namespace quorvane
