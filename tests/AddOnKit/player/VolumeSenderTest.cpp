#include "AddOnKit/player/VolumeSender.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

struct Fixture {
    ManualClock clock;
    std::vector<std::int64_t> sent;
    std::unique_ptr<VolumeSender> sender = std::make_unique<VolumeSender>(
        clock.clock(), [this](std::int64_t value) { sent.push_back(value); });

    void drag(std::initializer_list<std::int64_t> values, Duration pause) {
        for (const std::int64_t value : values) {
            sender->submit(value);
            clock.advance(pause);
        }
    }
};

using Values = std::vector<std::int64_t>;

TEST(VolumeSender, SendsTheFirstAtOnceAndTheLastHeldAfterTheInterval) {
    Fixture f;
    f.drag({10, 11, 12}, 20ms);
    EXPECT_EQ(f.sent, (Values{10}));
    f.clock.advance(23'333'332ns);
    EXPECT_EQ(f.sent, (Values{10}));
    f.clock.advance(1ns);
    EXPECT_EQ(f.sent, (Values{10, 12}));
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
}

TEST(VolumeSender, SendsAtMostTwelveASecondHoweverLongTheDrag) {
    Fixture f;
    for (int i = 0; i < 1000; ++i) f.drag({i}, 1ms);
    EXPECT_EQ(f.sent.size(), 13u);  // the one at the start, and twelve
    EXPECT_EQ(f.sent.back(), 999);
}

TEST(VolumeSender, TheReleaseSendsTheEndOnceMore) {
    Fixture f;
    f.sender->flush();
    EXPECT_EQ(f.sent, Values{});
    f.drag({40}, 10ms);
    f.sender->flush();
    f.sender->flush();
    EXPECT_EQ(f.sent, (Values{40, 40}));
    f.drag({41, 42}, 5ms);
    f.sender->flush();
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    f.clock.advance(1s);
    EXPECT_EQ(f.sent, (Values{40, 40, 42}));
}

TEST(VolumeThrottle, LetsAValueThroughAtItsIntervalAndForgetsWhatIsOver) {
    VolumeThrottle throttle;
    Instant now{};
    EXPECT_EQ(throttle.offer(1, now), 1);
    EXPECT_FALSE(throttle.offer(2, now + VolumeThrottle::kInterval - 1ns));
    now += VolumeThrottle::kInterval;
    EXPECT_FALSE(throttle.due(now - 1ns));
    EXPECT_EQ(throttle.due(now), 2);
    now += VolumeThrottle::kInterval;
    EXPECT_EQ(throttle.offer(3, now), 3);
    throttle.beginDrag();
    EXPECT_FALSE(throttle.flush()) << "3 is no part of the drag";
    throttle.offer(4, now);
    throttle.beginDrag();
    EXPECT_EQ(throttle.flush(), 4) << "4 is still owed";
    EXPECT_FALSE(throttle.pending);
    throttle.offer(5, now);
    throttle.cancel();
    EXPECT_FALSE(throttle.pending || throttle.flush());
}

TEST(VolumeSender, CancellingSendsNothingMore) {
    Fixture f;
    f.drag({1, 2}, 5ms);
    f.sender->cancel();
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    f.clock.advance(1s);
    f.sender->flush();
    EXPECT_EQ(f.sent, (Values{1}));
    f.drag({3, 4}, 5ms);
    f.sender.reset();
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
    EXPECT_EQ(f.sent, (Values{1, 3}));
}

// The main thread was busy: the timer of an earlier value fires after a newer send.
TEST(VolumeSender, ATimerThatComesEarlyForTheValueHeldWaitsTheRest) {
    std::vector<std::function<void()>> timers;
    Instant now{};
    const Clock clock{.now = [&] { return now; },
                      .after =
                          [&](Duration, std::function<void()> action) {
                              timers.push_back(std::move(action));
                              return Timer{[] {}};
                          },
                      .afterAbout = {}};
    Values sent;
    VolumeSender sender{clock, [&](std::int64_t value) { sent.push_back(value); }};
    sender.submit(1);
    sender.submit(2);
    now += 90ms;
    sender.submit(3);
    sender.submit(4);
    ASSERT_EQ(timers.size(), 1u);
    timers[0]();
    EXPECT_EQ(sent, (Values{1, 3}));
    ASSERT_EQ(timers.size(), 2u);
    now += 84ms;
    timers[1]();
    EXPECT_EQ(sent, (Values{1, 3, 4}));
}

TEST(VolumeSender, SendingMayCallBackInOrDestroyTheSender) {
    ManualClock clock;
    Values sent;
    std::unique_ptr<VolumeSender> sender;
    sender = std::make_unique<VolumeSender>(clock.clock(), [&](std::int64_t value) {
        if (value < 4) sender->submit(value + 1);
        if (value == 4) sender.reset();
        sent.push_back(value);  // the action is still whole
    });
    sender->submit(1);
    clock.advance(1s);
    EXPECT_EQ(sent, (Values{1, 2, 3, 4}));
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

}  // namespace
}  // namespace quorvane
