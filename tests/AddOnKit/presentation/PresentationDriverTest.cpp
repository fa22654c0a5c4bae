#include "AddOnKit/presentation/PresentationDriver.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

#include "tests/AddOnKit/presentation/PlannedWindows.hpp"
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
    std::vector<PresentationState> news;
    int locks = 0;

    Fixture() {
        driver->onChange = [this](const PresentationState& state) { news.push_back(state); };
        driver->onLocked = [this] { ++locks; };
    }
    void handle(std::initializer_list<PresentationEvent> events) {
        for (const PresentationEvent& event : events) driver->handle(event);
    }
};

TEST(PresentationDriver, RevealsTheCardAfterTheDelayAndLogsEveryChange) {
    Fixture f;
    f.handle({event::Link{true}, event::Music{true}, event::Locked{}, event::LockUIShown{}});
    f.log.take();
    f.clock.advance(799ms);
    EXPECT_FALSE(f.driver->state().windowsWanted());
    f.clock.advance(1ms);
    EXPECT_TRUE(f.driver->state().cardShown());
    EXPECT_EQ(f.log.lines().front().level, LogLevel::info);
    EXPECT_EQ(f.log.lines().front().category, "presenter");
    f.handle({event::QuorVaneQuit{}, event::Unlocked{}, event::Unlocked{}});
    EXPECT_EQ(
        f.log.take(),
        (Lines{"state: locked true, lockui true, delay true, allowed true, music true → windows "
               "true, card true",
               "state: locked true, lockui true, delay true, allowed true, music false → windows "
               "true, card false",
               "state: locked false, lockui false, delay false, allowed true, music false → "
               "windows false, card false"}));
    EXPECT_EQ(f.news.size(), 7u);
    EXPECT_EQ(f.news.back(), f.driver->state());
    EXPECT_EQ(describe(f.news.back()),
              "locked false, lockui false, delay false, allowed true, music false");
}

TEST(PresentationDriver, TellsOfEachLockNoticeAndOfAWakeThatRevealsOne) {
    Fixture f;
    std::vector<std::string> linesBefore;  // the listener is told
    f.driver->onLocked = [&] {
        ++f.locks;
        linesBefore = f.log.take();
    };
    f.handle({event::Locked{}, event::Locked{}});
    EXPECT_EQ(f.locks, 2);
    EXPECT_EQ(f.news.size(), 1u);
    f.log.take();
    f.handle({event::Woke{true}});
    EXPECT_TRUE(f.log.lines().empty());
    f.handle({event::Woke{false}, event::Woke{false}});
    EXPECT_EQ(f.locks, 2);
    EXPECT_EQ(f.log.lines().size(), 2u);  // the other is the change of state
    EXPECT_EQ(f.log.take()[0], "wake: the screen is unlocked but no unlock notice arrived");
    f.handle({event::Woke{true}});
    EXPECT_EQ(f.locks, 3);
    EXPECT_EQ(linesBefore, Lines{"wake: the screen is locked but no lock notice arrived"});

    // The delay begins after the listener has had its time.
    f.driver->onLocked = [&] { f.clock.advance(800ms); };
    f.handle({event::Unlocked{}, event::LockUIShown{}, event::Locked{}});
    EXPECT_FALSE(f.driver->state().delayElapsed);
}

TEST(PresentationDriver, AListenersEventsComeAfterTheNewsItWasToldOf) {
    Fixture f;
    f.driver->onLocked = [&] { f.handle({event::Link{true}}); };
    f.driver->onChange = [&](const PresentationState& state) {
        f.news.push_back(state);
        if (f.news.size() == 1) f.handle({event::Unlocked{}});
    };
    f.handle({event::Locked{}});
    EXPECT_EQ(f.news, (std::vector<PresentationState>{{.isLocked = true},
                                                      {.isLocked = true, .allowsPlayer = true},
                                                      {.allowsPlayer = true}}));
}

TEST(PresentationDriver, MayBeDestroyedByItsListenersAndTakesItsTimerAlong) {
    for (const bool byOnLocked : {true, false}) {
        Fixture f;
        const auto destroy = [&f] {
            f.driver.reset();
            ++f.locks;  // the listener is still whole
        };
        f.driver->onLocked = byOnLocked ? std::function<void()>{destroy} : nullptr;
        f.driver->onChange = [destroy](const PresentationState&) { destroy(); };
        f.driver->handle(event::Locked{});
        EXPECT_EQ(f.driver, nullptr);
    }
    Fixture f;
    f.handle({event::Locked{}, event::LockUIShown{}});
    f.driver->onChange = [&](const PresentationState&) { f.driver.reset(); };
    f.clock.advance(800ms);  // by what its own timer set in motion
    EXPECT_EQ(f.driver, nullptr);
    f.driver = std::make_unique<PresentationDriver>(f.clock.clock(), f.log.sink());
    f.handle({event::Locked{}, event::LockUIShown{}});
    f.driver.reset();
    EXPECT_EQ(f.clock.pendingTimers(), 0u);
}

// Driver, plans and windows together against what is meant: windows stand exactly when the screen
// has been locked with its UI shown for the delay without a break, and the card is allowed.
TEST(PresentationDriver, LongRandomSequencesKeepTheWindowsAsTheyAreMeant) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random{seed};
    const auto any = [&](unsigned below) { return random() % below; };
    Fixture f;
    PlannedWindows windows;
    PresentationState planned;
    f.driver->onChange = [&](const PresentationState& state) {
        windows.carryOut(CardWindowSync::steps(planned, state, windows.standing()));
        planned = state;
    };
    bool locked = false, shown = false, allowed = false, music = false;
    Duration together{};  // how long locked and shown have held at once
    const std::function<void()> moves[] = {
        [&] { f.handle({event::Link{allowed = any(4) != 0}}); },
        [&] { f.handle({event::Music{music = any(3) != 0}}); },
        [&] { f.handle({event::Locked{}}), locked = true; },
        [&] { f.handle({event::LockUIShown{}}), shown = true; },
        [&] { f.handle({event::LockUIHidden{}}), shown = false; },
        [&] { f.handle({event::Unlocked{}}), locked = shown = false; },
        [&] {
            f.handle({event::Woke{locked = any(2) != 0}});
            shown = shown && locked;
        },
        [&] { f.handle({event::QuorVaneQuit{}}), music = false; },
        [&] {
            windows.screenCount = any(3);
            windows.carryOut(CardWindowSync::rebuildSteps(planned, windows.standing()));
        },
    };
    int timesShown = 0;
    for (int step = 0; step < 20'000 && !testing::Test::HasFailure(); ++step) {
        if (any(2) == 0) {
            const Duration pause = std::chrono::milliseconds{any(500)};
            f.clock.advance(pause);
            if (locked && shown) together += pause;
        } else {
            moves[any(std::size(moves))]();
        }
        if (!locked || !shown) together = Duration{};
        const bool wanted = locked && shown && allowed && together >= 800ms;
        ASSERT_EQ(windows.windowCount, wanted ? windows.screenCount : 0) << "at step " << step;
        ASSERT_EQ(windows.isCardVisible, windows.windowCount > 0 && music) << "at step " << step;
        ASSERT_EQ(windows.isActivityActive, windows.windowCount > 0) << "at step " << step;
        ASSERT_EQ(f.clock.pendingTimers(), locked && shown && together < 800ms ? 1u : 0u);
        timesShown += windows.isCardVisible ? 1 : 0;
    }
    EXPECT_GT(timesShown, 0);
}

}  // namespace
}  // namespace quorvane
