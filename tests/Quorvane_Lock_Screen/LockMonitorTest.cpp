#include "Quorvane_Lock_Screen/LockMonitor.hpp"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/FakeNotices.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

using Events = std::vector<PresentationEvent>;

struct LockMonitorTest : testing::Test {
    LockMonitorTest() {
        DistributedNotices table = notices.distributed();
        table.post = [](const auto&, const auto&) { ADD_FAILURE() << "posts a notice"; };
        table.observe = [this, observe = table.observe](const auto& name, auto handler) {
            observed.push_back(name);
            return observe(name, handler);
        };
        const LockSources sources{.sessionDictionary = [this] { return session; },
                                  .observeWake =
                                      [this](std::function<void()> handler) {
                                          observed.push_back("wake");
                                          wake = std::move(handler);
                                          return Handle{[this] { wake = nullptr; }};
                                      },
                                  .notifyRegisterCheck =
                                      [this](const char* name, int& token) {
                                          EXPECT_STREQ(name, kSharedState);
                                          token = 17;
                                          registrations += registerStatus == 0 ? 1 : 0;
                                          return registerStatus;
                                      },
                                  .notifyGetState =
                                      [this](int token, std::uint64_t& state) {
                                          EXPECT_EQ(token, 17);
                                          if (getStatus == 0) state = 18'446'744'073'709'551'615u;
                                          return getStatus;
                                      },
                                  .notifyCancel =
                                      [this](int token) {
                                          EXPECT_EQ(token, 17);
                                          --registrations;
                                      }};
        monitor = std::make_unique<LockMonitor>(table, sources, log.sink());
        monitor->onEvent = [this](const PresentationEvent& event) { events.push_back(event); };
    }
    static PropertyValue sessionWith(PropertyValue::Storage value) {
        return {PropertyDictionary{{"CGSSessionScreenIsLocked", {std::move(value)}}}};
    }

    static constexpr char kSharedState[] = "com.apple.sessionagent.screenLockUIIsShowing";

    RecordingLog log;
    FakeNotices notices;
    Lines observed;  // in order
    std::function<void()> wake;
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

TEST_F(LockMonitorTest, EmitsOneEventForEachNoticeAndForAWake) {
    monitor->start();
    for (const char* name :
         {"com.apple.screenIsLocked", "com.apple.screenIsLocked", "com.apple.screenLockUIIsShown",
          "com.apple.screenLockUIIsHidden", "com.apple.screenIsUnlocked"})
        notices.deliver(name);
    session = sessionWith(true);
    wake();
    registerStatus = 9;
    session.reset();
    wake();
    registerStatus = 0;
    getStatus = 5;
    wake();
    EXPECT_EQ(registrations, 0);
    EXPECT_EQ(events, (Events{event::Locked{}, event::Locked{}, event::LockUIShown{},
                              event::LockUIHidden{}, event::Unlocked{}, event::Woke{true},
                              event::Woke{false}, event::Woke{false}}));
    monitor->onEvent = nullptr;
    notices.deliver("com.apple.screenIsLocked");
    for (const auto& line : log.lines())
        EXPECT_TRUE(line.level == LogLevel::info && line.category == "presenter") << line.text;
    EXPECT_EQ(log.take(),
              (Lines{"lock monitor started; locked now false",
                     "lockui: shared state 18446744073709551615", "lock: com.apple.screenIsLocked",
                     "lock: com.apple.screenIsLocked", "lockui: shown", "lockui: hidden",
                     "unlock: com.apple.screenIsUnlocked", "wake: locked now true",
                     "lockui: shared state 18446744073709551615", "wake: locked now false",
                     "lockui: shared state unavailable (register 9)", "wake: locked now false",
                     "lockui: shared state unreadable (get 5)", "lock: com.apple.screenIsLocked"}));
}

TEST_F(LockMonitorTest, ObservesInOrderWhileStarted) {
    const Lines order{"com.apple.screenIsLocked", "com.apple.screenIsUnlocked",
                      "com.apple.screenLockUIIsShown", "com.apple.screenLockUIIsHidden", "wake"};
    monitor->stop();
    for (int round = 0; round < 2; ++round) {
        observed.clear();
        monitor->start();
        monitor->start();
        EXPECT_EQ(observed, order);
        monitor->stop();
        monitor->stop();
        EXPECT_EQ(notices.observerCount(), 0u);
        EXPECT_EQ(wake, nullptr);
    }
    monitor->start();
    monitor->onEvent = [this](const PresentationEvent& event) {
        monitor.reset();
        events.push_back(event);  // the listener is still whole
    };
    notices.deliver("com.apple.screenIsLocked");
    EXPECT_EQ(events, Events{event::Locked{}});
    EXPECT_EQ(notices.observerCount(), 0u);
    EXPECT_EQ(wake, nullptr);
}

}  // namespace
}  // namespace quorvane
