#include "host/addon/HostStatus.hpp"

#include <gtest/gtest.h>

#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/records/XPCCodableHelpers.hpp"
#include "host/addon/HostStatusQuery.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/MemoryFileStore.hpp"
#include "tests/support/MemoryPorts.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr WallTime kNow = ManualClock::kStart;

QuorvanePlayerState playing(XPCPlayerState state, double position, XPCTrack track) {
    return {.track = std::move(track),
            .playerState = state,
            .playerPosition = position,
            .timestamp = kNow - 10s};
}

TEST(HostStatus, IsAFewLinesOfText) {
    using enum HostStatus::Failure;
    using enum AddOnInstallation::State;
    const auto place = [](AddOnInstallation::State state) {
        return AddOnInstallation{.supportDirectory = "/a",
                                 .bundle = "/a/X.app",
                                 .state = state,
                                 .version = "1.2\n",
                                 .trouble = "/a is not a folder"};
    };
    LockScreenAddOnSighting seen{.addOnVersion = "1.2.0",
                                 .macOSVersion = "26.1.0",
                                 .supportsThisMacOS = true,
                                 .date = kNow - 5s,
                                 .installID = {}};
    LockScreenAddOnSighting tooOld = seen;
    tooOld.supportsThisMacOS = false;
    const std::pair<HostStatus, const char*> rows[] = {
        {{},
         "Host:    Quorvane is not reachable; start it with: quorvane-host run\n"
         "Card:    unknown: the shared settings cannot be opened\n"
         "Install: not installed (run: quorvane-host install)\n"
         "Add-on:  not running; never seen\n"},
        {{.state = std::unexpected{late}, .hasSharedDefaults = true},
         "Host:    Quorvane did not answer in time; if this repeats, stop the host and start it "
         "again\n"
         "Card:    off\n"
         "Install: not installed (run: quorvane-host install)\n"
         "Add-on:  not running; never seen\n"},
        {{.state = std::unexpected{noAnswer},
          .hasSharedDefaults = true,
          .lastSeen = seen,
          .place = place(installed)},
         "Host:    Quorvane did not answer the request; stop the host and start it again\n"
         "Card:    off (turn on with: quorvane-host enable)\n"
         "Install: version 1.2? as /a/X.app\n"
         "Add-on:  not running; version 1.2.0 was last seen 2025-12-31T23:59:55Z\n"},
        {{.state = QuorvanePlayerState{},
          .hasSharedDefaults = true,
          .isEnabled = true,
          .lastLockHadNoRoom = true,
          .lastSeen = seen,
          .place = place(damaged),
          .isAddOnRunning = true},
         "Host:    running, nothing playing\n"
         "Card:    on, but the last lock screen had no room for it (make it smaller with a lower "
         "QUORVANE_SCALE)\n"
         "Install: damaged (repair with: quorvane-host install; or run: quorvane-host remove)\n"
         "Add-on:  running, but not answering; version 1.2.0 was last seen "
         "2025-12-31T23:59:55Z\n"},
        {{.state = playing(XPCPlayerState::paused, 61.9, {"A\x1b[2J\u009b1mB", ""}),
          .hasSharedDefaults = true,
          .isEnabled = true,
          .pendingRemoval = LockScreenPendingRemoval{},
          .place = place(foreign),
          .isAddOnRunning = true,
          .addOn = AddOnSignals::Status{true, "1.2.1"},
          .problems = {"no bus"}},
         "Host:    running, paused \"A?[2J?1mB\" (1:01)\n"
         "Card:    off; the add-on has been asked to remove itself\n"
         "Install: no; /a is not a folder\n"
         "Add-on:  running, version 1.2.1, connected\n"
         "Session: no bus\n"},
        {{.state = playing(XPCPlayerState::playing, 61.9,
                           {.title = "A\u00e9", .artist = "B", .duration = 600}),
          .hasSharedDefaults = true,
          .isEnabled = true,
          .lastSeen = tooOld,
          .addOn = AddOnSignals::Status{false, "1.2.1"}},
         "Host:    running, playing \"A\u00e9\" by B (1:11 of 10:00)\n"
         "Card:    on\n"
         "Install: not installed (run: quorvane-host install)\n"
         "Add-on:  running, version 1.2.1, not connected; needs an update that supports system "
         "26.1.0\n"},
        {{.state = playing(XPCPlayerState::stopped, 1e300, {"A", ""})},  // beyond any integer
         "Host:    running, stopped \"A\" (150000000000000:00)\n"
         "Card:    unknown: the shared settings cannot be opened\n"
         "Install: not installed (run: quorvane-host install)\n"
         "Add-on:  not running; never seen\n"},
    };
    for (const auto& [status, text] : rows) EXPECT_EQ(status.text(kNow), text);
}

const std::string kMainPort{kMessagePortBaseName};
const Bytes kSecret(MessagePortWire::kSecretLength, std::byte{9});

class HostStatusQueryTest : public testing::Test {
protected:
    HostStatus ask() {
        HostStatusQuery query{
            {.control = {.applications =
                             {.running = [](const auto&) { return std::vector<RunningCopy>(1); },
                              .current = {},
                              .terminate = {}},
                         .notices = notices.distributed(),
                         .clock = clock.clock()},
             .connectPort = ports.connectPort(),
             .sharedSuite = defaults.table(),
             .addOnDefaults = addOnDefaults.table()},
            store.table()};
        std::vector<HostStatus> answers;
        query.start([&](HostStatus status) { answers.push_back(std::move(status)); });
        if (addOnSays) notices.deliver(AddOnSignals::kStatus, *addOnSays);
        EXPECT_EQ(answers.size(), answersAtOnce ? 1u : 0u);
        clock.advance(500ms);
        notices.deliver(AddOnSignals::kStatus, AddOnSignals::Status{true, "late"}.userInfo());
        EXPECT_EQ(answers.size(), 1u);
        return answers.empty() ? HostStatus{} : answers.front();
    }

    MemoryFileStore store{.files = {{"/container/ipc-secret", kSecret}}};
    ManualClock clock;
    FakeNotices notices;
    MemoryDefaults defaults;
    MemoryDefaults addOnDefaults;
    MemoryPorts ports;
    Bytes reply;  // of a host's main port
    Handle host = ports.serve(kMainPort, [this](std::int32_t, ByteView) { return reply; });
    std::optional<PropertyDictionary> addOnSays;
    bool answersAtOnce = false;
};

TEST_F(HostStatusQueryTest, CollectsTheAnswersOfHostAndAddOn) {
    defaults.values["lockScreenEnabled"] = {true};
    addOnDefaults.values["lastLockHadNoRoom"] = {true};
    const QuorvanePlayerState state{.track = XPCTrack{.title = "T", .artist = "A"}};
    reply = *XPCCodableHelpers::encode(state);
    addOnSays = AddOnSignals::Status{true, "1.0.0"}.userInfo();
    answersAtOnce = true;
    const HostStatus status = ask();
    EXPECT_TRUE(status.isEnabled);
    EXPECT_TRUE(status.isAddOnRunning);
    EXPECT_TRUE(status.lastLockHadNoRoom);
    EXPECT_EQ(status.state, state);
    ASSERT_EQ(ports.sent.size(), 1u);
    EXPECT_EQ(ports.sent[0].messageID, 1);
    EXPECT_EQ(ports.sent[0].body, kSecret);
    EXPECT_EQ(status.addOn, (AddOnSignals::Status{true, "1.0.0"}));
}

TEST_F(HostStatusQueryTest, TellsWhyThereIsNoState) {
    using enum HostStatus::Failure;
    addOnSays = PropertyDictionary{{"version", {std::string{"1"}}}};
    struct Row {
        std::int32_t status;
        const char* text;
        HostStatus::Failure failure;
    };
    for (const auto& [status, text, failure] : {Row{kPortReceiveTimeout, "{}", late},
                                                {kPortSendTimeout, "{}", late},
                                                {kPortBecameInvalid, "{}", noAnswer},
                                                {kPortSuccess, "", noAnswer},
                                                {kPortSuccess, "{}", noAnswer}}) {
        ports.failures.clear();
        if (status != kPortSuccess) ports.failures[kMainPort] = status;
        reply = copyOf(bytesOf(text));
        const HostStatus told = ask();
        EXPECT_EQ(told.state, std::unexpected{failure});
        EXPECT_FALSE(told.addOn);
    }
    host.reset();
    EXPECT_EQ(ask().state, std::unexpected{notReachable});
}

}  // namespace
}  // namespace quorvane
