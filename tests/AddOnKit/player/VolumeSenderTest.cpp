#include "AddOnKit/player/VolumeSender.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Values = std::vector<std::int64_t>;

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
