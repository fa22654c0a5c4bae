#include "Quorvane_Lock_Screen/LockMonitor.hpp"

#include <gtest/gtest.h>

#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using Events = std::vector<PresentationEvent>;

struct LockMonitorTest : testing::Test, FakePlatform {
    LockMonitorTest() {
        LockSources& sources = live.lockSources;
        sources.sessionDictionary = [this] { return session; };
        sources.notifyRegisterCheck = [this](const char* name, int& token) {
            EXPECT_STREQ(name, "com.apple.sessionagent.screenLockUIIsShowing");
            token = 17;
            registrations += registerStatus == 0 ? 1 : 0;
            return registerStatus;
        };
        sources.notifyGetState = [this](int token, std::uint64_t& state) {
            EXPECT_EQ(token, 17);
            if (getStatus == 0) state = 18'446'744'073'709'551'615u;
            return getStatus;
        };
        sources.notifyCancel = [this](int token) {
            EXPECT_EQ(token, 17);
            --registrations;
        };
        monitor = std::make_unique<LockMonitor>(notices.distributed(), sources, log.sink());
        monitor->onEvent = [this](const PresentationEvent& event) { events.push_back(event); };
    }
    static PropertyValue sessionWith(PropertyValue::Storage value) {
        return {PropertyDictionary{{"CGSSessionScreenIsLocked", {std::move(value)}}}};
    }

    std::optional<PropertyValue> session;
    std::uint32_t registerStatus = 0;
    std::uint32_t getStatus = 0;
    int registrations = 0;  // that have not been cancelled
    Events events;
    std::unique_ptr<LockMonitor> monitor;
};

TEST_F(LockMonitorTest, ReadsTheLockFlagAgainAndStrictly) {
    EXPECT_FALSE(monitor->isScreenLockedNow());
    session = sessionWith(true);
    EXPECT_TRUE(monitor->isScreenLockedNow());
    for (const PropertyValue& unlocked :
         {sessionWith(false), sessionWith(std::int64_t{1}), sessionWith(std::string{"true"}),
          PropertyValue{PropertyDictionary{{"OnConsole", {true}}}}, PropertyValue{true},
          PropertyValue{PropertyArray{}}}) {
        session = unlocked;
        EXPECT_FALSE(monitor->isScreenLockedNow()) << "storage " << unlocked.value.index();
    }
}

TEST_F(LockMonitorTest, AsksAgainAtAWake) {
    monitor->start();
    session = sessionWith(true);
    wake();
    registerStatus = 9;
    session.reset();
    wake();
    registerStatus = 0;
    getStatus = 5;
    wake();
    EXPECT_EQ(registrations, 0);
    EXPECT_EQ(events, (Events{event::Woke{true}, event::Woke{false}, event::Woke{false}}));
    EXPECT_EQ(log.take(),
              (Lines{"lock monitor started; locked now false",
                     "lockui: shared state 18446744073709551615", "wake: locked now true",
                     "lockui: shared state 18446744073709551615", "wake: locked now false",
                     "lockui: shared state unavailable (register 9)", "wake: locked now false",
                     "lockui: shared state unreadable (get 5)"}));
}

TEST_F(LockMonitorTest, ObservesWhileStarted) {
    for (int round = 0; round < 2; ++round) {
        monitor->start();
        monitor->start();
        EXPECT_EQ(notices.observerCount(), 4u);
        monitor->stop();
        EXPECT_EQ(notices.observerCount(), 0u);
        EXPECT_EQ(wake, nullptr);
    }
    monitor->start();
    monitor->onEvent = [this](const PresentationEvent& event) {
        monitor->stop();
        events.push_back(event);
    };
    notices.deliver("com.apple.screenIsLocked");
    EXPECT_EQ(events, Events{event::Locked{}});
    EXPECT_EQ(notices.observerCount(), 0u);
}

}  // namespace
}  // namespace quorvane
