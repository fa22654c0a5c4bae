#include "AddOnKit/life/InstanceHandover.hpp"

#include <gtest/gtest.h>

#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using Copy = InstanceHandover::RunningCopy;
using Outcome = InstanceHandover::Outcome;
using Kind = Outcome::Kind;

constexpr Copy kMe{50, ManualClock::kStart};

struct InstanceHandoverTest : testing::Test {
    std::optional<Outcome> resolve(Copy me = kMe) {
        handover.emplace(
            me,
            InstanceHandover::Operations{.running =
                                             [this] {
                                                 if (++looks == lastLookWithOthers + 1)
                                                     copies = {kMe};
                                                 return copies;
                                             },
                                         .terminate =
                                             [this](const InstanceHandover::PIDs& pids) {
                                                 asked = pids;
                                                 if (obeysAtOnce) copies = {kMe};
                                             },
                                         .clock = clock.clock()},
            InstanceHandover::Timing{});
        handover->resolve([this](Outcome outcome) { result = outcome; });
        return result;
    }

    ManualClock clock;
    std::vector<Copy> copies{kMe};
    InstanceHandover::PIDs asked;
    bool obeysAtOnce = false;
    int looks = 0;
    int lastLookWithOthers = 1000;  // they quit after it
    std::optional<InstanceHandover> handover;
    std::optional<Outcome> result;
};

TEST_F(InstanceHandoverTest, TheNewestCopyWaitsAndOlderOnesDoNot) {
    EXPECT_EQ(resolve(), Outcome{Kind::alone});
    copies = {{70, ManualClock::kStart + 1s}, kMe, {60, ManualClock::kStart}};
    EXPECT_EQ(resolve(), (Outcome{Kind::oldestCopy, {70, 60}}));  // 60: same date, higher pid
    result.reset();
    for (const Copy older : {Copy{40, ManualClock::kStart}, Copy{70, ManualClock::kStart - 1ns},
                             Copy{70, std::nullopt}}) {
        copies = {older, kMe};
        EXPECT_EQ(resolve(), std::nullopt) << "waits for " << older.pid;
    }
    copies = {{40, std::nullopt}, {50, std::nullopt}};
    EXPECT_EQ(resolve({50, std::nullopt}), std::nullopt);
}

TEST_F(InstanceHandoverTest, EachLookComesBeforeTheCheckOfTheTime) {
    copies = {{40, std::nullopt}, kMe};
    resolve();
    clock.advance(9'999ms);
    EXPECT_EQ(result, std::nullopt);
    copies = {kMe};
    clock.advance(1ms);
    EXPECT_EQ(result, (Outcome{.kind = Kind::othersExited, .waited = 10s}));
    EXPECT_EQ(looks, 2 + 40);
    EXPECT_TRUE(asked.empty());
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(InstanceHandoverTest, AsksAfterTheWaitAndGivesAGraceTime) {
    copies = {{41, std::nullopt}, {42, std::nullopt}, kMe};
    resolve();
    clock.advance(10s);
    EXPECT_EQ(asked, (InstanceHandover::PIDs{41, 42}));
    EXPECT_EQ(result, std::nullopt);
    clock.advance(1'900ms);
    copies = {{42, std::nullopt}, kMe};
    clock.advance(100ms);
    EXPECT_EQ(result, (Outcome{Kind::stillRunningAfterTermination, {42}}));

    copies = {{41, std::nullopt}, kMe};
    resolve();
    clock.advance(10s + 300ms);
    copies = {kMe};
    clock.advance(200ms);
    EXPECT_EQ(result, (Outcome{Kind::terminated, {41}}));

    copies = {{41, std::nullopt}, kMe};
    obeysAtOnce = true;
    resolve();
    clock.advance(10s);
    EXPECT_EQ(result, (Outcome{Kind::terminated, {41}}));

    // A copy that quits right after the last check is still reported.
    copies = {{41, std::nullopt}, kMe};
    lastLookWithOthers = looks + 2 + 40;
    resolve();
    clock.advance(10s);
    EXPECT_EQ(asked, (InstanceHandover::PIDs{41}));
}

TEST_F(InstanceHandoverTest, ANewCopyThatAppearsMeanwhileIsNoReasonToWait) {
    copies = {{40, std::nullopt}, kMe};
    resolve();
    copies = {{90, ManualClock::kStart + 1s}, kMe};
    clock.advance(250ms);
    EXPECT_EQ(result, (Outcome{.kind = Kind::othersExited, .waited = 250ms}));
}

TEST_F(InstanceHandoverTest, TheWaitOnlyFormTellsWhoIsLeft) {
    copies = {{40, std::nullopt}, kMe};
    InstanceHandover waiting{kMe,
                             {.running = [this] { return copies; },
                              .terminate = [](const auto&) { ADD_FAILURE(); },
                              .clock = clock.clock()},
                             {.wait = 1s, .poll = 500ms}};
    waiting.waitOnly([this](Outcome outcome) { result = outcome; });
    clock.advance(1s);
    EXPECT_EQ(result, (Outcome{Kind::timedOut, {40}}));
}

}  // namespace
}  // namespace quorvane
