#include "Quorvane_Lock_Screen/LockMonitor.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/FakeNotices.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

// The system around the monitor: what observes what, and what the sources answer.
struct Fixture {
    RecordingLog log;
    FakeNotices notices;
    std::vector<std::string> observed;  // in order
    std::function<void()> wake;
    std::optional<PropertyValue> session;
    std::uint32_t registerStatus = 0;
    std::uint32_t getStatus = 0;
    int registrations = 0;  // that have not been cancelled
    std::vector<PresentationEvent> events;
    std::unique_ptr<LockMonitor> monitor;

    Fixture() {
        DistributedNotices table = notices.distributed();
        table.post = [](const auto&, const auto&) { ADD_FAILURE() << "posts a notice"; };
        table.observe = [this, observe = table.observe](const auto& name, auto handler) {
            observed.push_back(name);
            return observe(name, handler);
        };
        LockSources sources;
        sources.sessionDictionary = [this] { return session; };
        sources.observeWake = [this](std::function<void()> handler) {
            observed.push_back("wake");
            wake = std::move(handler);
            return Handle{[this] { wake = nullptr; }};
        };
        sources.notifyRegisterCheck = [this](const char* name, int& token) {
            EXPECT_STREQ(name, "com.apple.sessionagent.screenLockUIIsShowing");
            token = 17;
            registrations += registerStatus == 0 ? 1 : 0;
            return registerStatus;
        };
        sources.notifyGetState = [this](int token, std::uint64_t& state) {
            EXPECT_EQ(token, 17);
            EXPECT_EQ(state, 0u);
            if (getStatus == 0) state = 18'446'744'073'709'551'615u;
            return getStatus;
        };
        sources.notifyCancel = [this](int token) {
            EXPECT_EQ(token, 17);
            --registrations;
        };
        monitor = std::make_unique<LockMonitor>(table, sources, log.sink());
        monitor->onEvent = [this](const PresentationEvent& event) { events.push_back(event); };
    }
};

PropertyValue sessionWith(PropertyValue::Storage value) {
    return {PropertyDictionary{{"CGSSessionScreenIsLocked", {std::move(value)}}}};
}

TEST(LockMonitor, ReadsTheLockFlagAfreshAndStrictly) {
    Fixture f;
    EXPECT_FALSE(f.monitor->isScreenLockedNow());
    f.session = sessionWith(true);
    EXPECT_TRUE(f.monitor->isScreenLockedNow());
    for (const PropertyValue& unlocked :
         {sessionWith(false), sessionWith(std::int64_t{1}), sessionWith(std::string{"true"}),
          PropertyValue{PropertyDictionary{{"OnConsole", {true}}}}, PropertyValue{true},
          PropertyValue{PropertyArray{}}}) {
        f.session = unlocked;
        EXPECT_FALSE(f.monitor->isScreenLockedNow()) << "storage " << unlocked.value.index();
    }
    EXPECT_EQ(f.log.take(), Lines{});
}

TEST(LockMonitor, PassesEachNoticeOnAsItComes) {
    Fixture f;
    f.monitor->start();
    EXPECT_EQ(f.log.take(), (Lines{"lock monitor started; locked now false",
                                   "lockui: shared state 18446744073709551615"}));
    EXPECT_EQ(f.events.size(), 0u);
    for (const char* name :
         {"com.apple.screenIsLocked", "com.apple.screenIsLocked", "com.apple.screenLockUIIsShown",
          "com.apple.screenLockUIIsHidden", "com.apple.screenIsUnlocked"})
        f.notices.deliver(name);
    EXPECT_EQ(f.events, (std::vector<PresentationEvent>{event::Locked{}, event::Locked{},
                                                        event::LockUIShown{}, event::LockUIHidden{},
                                                        event::Unlocked{}}));
    for (const auto& line : f.log.lines()) {
        EXPECT_EQ(line.level, LogLevel::info);
        EXPECT_EQ(line.category, "presenter");
    }
    EXPECT_EQ(f.log.take(),
              (Lines{"lock: com.apple.screenIsLocked", "lock: com.apple.screenIsLocked",
                     "lockui: shown", "lockui: hidden", "unlock: com.apple.screenIsUnlocked"}));
    f.monitor->onEvent = nullptr;
    f.notices.deliver("com.apple.screenIsLocked");
    EXPECT_EQ(f.log.take(), Lines{"lock: com.apple.screenIsLocked"});
}

TEST(LockMonitor, AWakeTellsTheFlagOfThatMoment) {
    Fixture f;
    f.monitor->start();
    f.log.take();
    f.session = sessionWith(true);
    f.wake();
    f.registerStatus = 9;
    f.session.reset();
    f.wake();
    f.registerStatus = 0;
    f.getStatus = 5;
    f.wake();
    EXPECT_EQ(f.events, (std::vector<PresentationEvent>{event::Woke{true}, event::Woke{false},
                                                        event::Woke{false}}));
    EXPECT_EQ(f.log.take(),
              (Lines{"wake: locked now true", "lockui: shared state 18446744073709551615",
                     "wake: locked now false", "lockui: shared state unavailable (register 9)",
                     "wake: locked now false", "lockui: shared state unreadable (get 5)"}));
    EXPECT_EQ(f.registrations, 0);
}

TEST(LockMonitor, ObservesInOrderWhileStarted) {
    const Lines order{"com.apple.screenIsLocked", "com.apple.screenIsUnlocked",
                      "com.apple.screenLockUIIsShown", "com.apple.screenLockUIIsHidden", "wake"};
    Fixture f;
    f.monitor->stop();
    for (int round = 0; round < 2; ++round) {
        f.observed.clear();
        f.monitor->start();
        f.monitor->start();
        EXPECT_EQ(f.observed, order);
        f.monitor->stop();
        f.monitor->stop();
        EXPECT_EQ(f.notices.observerCount(), 0u);
        EXPECT_EQ(f.wake, nullptr);
    }
    f.monitor->start();
    f.monitor->onEvent = [&](const PresentationEvent& event) {
        f.monitor.reset();
        f.events.push_back(event);  // the listener is still whole
    };
    f.notices.deliver("com.apple.screenIsLocked");
    EXPECT_EQ(f.events, std::vector<PresentationEvent>{event::Locked{}});
    EXPECT_EQ(f.notices.observerCount(), 0u);
    EXPECT_EQ(f.wake, nullptr);
}

}  // namespace
}  // namespace quorvane
