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

std::string lineOf(const HostStatus& status, const std::string& head) {
    const std::string text = status.text(kNow);
    const auto begin = text.find(head);
    return begin == std::string::npos ? "" : text.substr(begin, text.find('\n', begin) - begin);
}

TEST(HostStatus, TellsWhatTheHostPlays) {
    using enum HostStatus::Failure;
    HostStatus status;
    const std::pair<HostStatus::Failure, const char*> failures[] = {
        {notReachable, "Host:    Quorvane is not reachable; start it with: quorvane-host run"},
        {late,
         "Host:    Quorvane did not answer in time; if this repeats, stop the host and start it "
         "again"},
        {noAnswer,
         "Host:    Quorvane did not answer the request; stop the host and start it again"}};
    for (const auto& [failure, line] : failures) {
        status.state = std::unexpected{failure};
        EXPECT_EQ(lineOf(status, "Host"), line);
    }
    status.state = QuorvanePlayerState{};
    EXPECT_EQ(lineOf(status, "Host"), "Host:    running, nothing playing");
    status.state->track = XPCTrack{.title = "A\x1b[2J\u009b1mB", .artist = ""};
    status.state->playerState = XPCPlayerState::paused;
    status.state->playerPosition = 1e300;
    EXPECT_FALSE(lineOf(status, "Host").empty()) << "no whole number holds it";
    status.state->playerPosition = 61.9;
    status.state->timestamp = kNow - 10s;
    EXPECT_EQ(lineOf(status, "Host"), "Host:    running, paused \"A?[2J?1mB\" (1:01)");
    status.state->playerState = XPCPlayerState::playing;
    status.state->track = XPCTrack{.title = "A\u00e9", .artist = "B", .duration = 600};
    EXPECT_EQ(lineOf(status, "Host"), "Host:    running, playing \"A\u00e9\" by B (1:11 of 10:00)");
}

TEST(HostStatus, TellsOfCardAddOnAndSession) {
    HostStatus status;
    const auto expect = [&](const std::string& line) {
        EXPECT_EQ(lineOf(status, line.substr(0, line.find(':'))), line);
    };
    expect("Card:    unknown: the shared settings cannot be opened");
    expect("Install: not installed (run: quorvane-host install)");
    expect("Add-on:  not running; never seen");
    status.hasSharedDefaults = true;
    expect("Card:    off");
    status.place = {.supportDirectory = "/a",
                    .bundle = "/a/X.app",
                    .state = AddOnInstallation::State::installed,
                    .version = "1.2\n",
                    .trouble = {}};
    expect("Card:    off (turn on with: quorvane-host enable)");
    expect("Install: version 1.2? as /a/X.app");
    status.isEnabled = true;
    status.lastLockHadNoRoom = true;
    EXPECT_TRUE(lineOf(status, "Card").starts_with("Card:    on, but the last lock screen had no"));
    status.pendingRemoval.emplace();
    expect("Card:    off; the add-on has been asked to remove itself");
    status.place.state = AddOnInstallation::State::damaged;
    expect("Install: damaged (repair with: quorvane-host install; or run: quorvane-host remove)");
    status.place.state = AddOnInstallation::State::foreign;
    status.place.trouble = "/a is not a folder";
    expect("Install: no; /a is not a folder");

    status.lastSeen = LockScreenAddOnSighting{.addOnVersion = "1.2.0",
                                              .macOSVersion = "26.1.0",
                                              .supportsThisMacOS = true,
                                              .date = kNow - 5s,
                                              .installID = {}};
    expect("Add-on:  not running; version 1.2.0 was last seen 2025-12-31T23:59:55Z");
    status.isAddOnRunning = true;
    expect("Add-on:  running, but not answering; version 1.2.0 was last seen 2025-12-31T23:59:55Z");
    status.addOn = AddOnSignals::Status{true, "1.2.1"};
    expect("Add-on:  running, version 1.2.1, connected");
    status.addOn->isConnected = false;
    status.lastSeen->supportsThisMacOS = false;
    expect(
        "Add-on:  running, version 1.2.1, not connected; needs an update that supports system "
        "26.1.0");
    status.problems = {"no bus"};
    expect("Session: no bus");
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

TEST_F(HostStatusQueryTest, EverybodyAnswers) {
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

TEST_F(HostStatusQueryTest, AnswersThatAreNone) {
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
