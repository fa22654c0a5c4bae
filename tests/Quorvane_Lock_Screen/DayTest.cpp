// A simulated day with a thousand locks: no object is left over and no timer drifts.
// QUORVANE_DAY_LOCKS sets another number of locks.
#include <gtest/gtest.h>

#include <cstdlib>

#include "Quorvane_Lock_Screen/AddOnCoordinator.hpp"
#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// Shorter than a request's timeout.
constexpr Duration kStep = 500ms;

TEST(Day, OfLocksLeavesNothingAndLosesNoTime) {
    const char* const wished = std::getenv("QUORVANE_DAY_LOCKS");
    const int locks = wished ? std::atoi(wished) : 1000;
    constexpr Duration kDay = 24h;
    FakePlatform platform;
    const auto coordinator = AddOnCoordinator::make(platform.live);
    coordinator->start();
    platform.settle();
    const std::size_t timers = platform.clock.pendingTimers();
    const std::size_t observers = platform.notices.observerCount();

    platform.pass(1ms, kStep);  // no lock coincides with a hello
    for (int lock = 0; lock < locks; ++lock) {
        platform.lock();
        platform.pass(800ms, kStep);
        ASSERT_EQ(platform.windows.open().size(), 1u) << "lock " << lock;
        platform.unlock();
        ASSERT_TRUE(platform.windows.open().empty()) << "lock " << lock;
        ASSERT_EQ(platform.activities, 0);
        ASSERT_EQ(platform.clock.pendingTimers(), timers) << "lock " << lock;
        platform.pass(kDay / locks - 800ms, kStep);
        // The records of the fakes.
        platform.windows.windows.clear();
        platform.windows.stages.clear();
        platform.ports.sent.clear();
        platform.log.take();
    }
    EXPECT_EQ(platform.notices.observerCount(), observers);
    // One at the start, one per lock, and one a minute after each answer, which a step may delay.
    const auto others = platform.mainApp.hellos.size() - 1 - static_cast<std::size_t>(locks);
    EXPECT_LE(others, kDay / 1min);
    EXPECT_GE(others, kDay / (1min + kStep));
}

}  // namespace
}  // namespace quorvane
