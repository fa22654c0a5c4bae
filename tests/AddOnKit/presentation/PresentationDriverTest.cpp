#include "AddOnKit/presentation/PresentationDriver.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/ManualClock.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

struct Fixture {
    ManualClock clock;
    RecordingLog log;
    std::unique_ptr<PresentationDriver> driver =
        std::make_unique<PresentationDriver>(clock.clock(), log.sink());
    std::vector<PresentationState> changes{{}};
    int locks = 0;

    Fixture() {
        driver->onChange = [this](const PresentationState& state) { changes.push_back(state); };
        driver->onLocked = [this] { ++locks; };
    }
    void handle(std::initializer_list<PresentationEvent> events) {
        for (const PresentationEvent& event : events) driver->handle(event);
    }
};

TEST(PresentationDriver, ReportsEachLockNoticeAndAWakeThatRevealsOne) {
    Fixture f;
    Lines linesBefore;  // the listener is called
    f.driver->onLocked = [&] {
        ++f.locks;
        linesBefore = f.log.take();
    };
    f.handle({event::Locked{}, event::Locked{}, event::Woke{true}});
    EXPECT_EQ(f.locks, 2);
    f.log.take();
    f.handle({event::Woke{false}, event::Woke{false}});
    EXPECT_EQ(f.locks, 2);
    EXPECT_EQ(f.log.lines().size(), 2u);  // the other is the change of state
    EXPECT_EQ(f.log.take()[0], "wake: the screen is unlocked but no unlock notice arrived");
    f.handle({event::Woke{true}});
    EXPECT_EQ(f.locks, 3);
    EXPECT_EQ(linesBefore, Lines{"wake: the screen is locked but no lock notice arrived"});

    // The delay begins when the listener returns.
    f.driver->onLocked = [&] { f.clock.advance(800ms); };
    f.handle({event::Unlocked{}, event::LockUIShown{}, event::Locked{}});
    EXPECT_FALSE(f.driver->state().delayElapsed);
    EXPECT_EQ(std::ranges::adjacent_find(f.changes), f.changes.end()) << "reports only changes";
}

TEST(PresentationDriver, AListenersEventsFollowTheChangeItWasNotifiedOf) {
    Fixture f;
    f.driver->onLocked = [&] { f.handle({event::Link{true}}); };
    f.driver->onChange = [&](const PresentationState& state) {
        f.changes.push_back(state);
        if (f.changes.size() == 2) f.handle({event::Unlocked{}});
    };
    f.handle({event::Locked{}});
    EXPECT_EQ(f.changes, (std::vector<PresentationState>{{},
                                                         {.isLocked = true},
                                                         {.isLocked = true, .allowsPlayer = true},
                                                         {.allowsPlayer = true}}));
}

}  // namespace
}  // namespace quorvane
