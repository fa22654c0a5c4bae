#include "host/HostStatus.hpp"

#include <gtest/gtest.h>

#include "QuorvaneKit/MessagePortWire.hpp"
#include "QuorvaneKit/PortNames.hpp"
#include "QuorvaneKit/SharedDefaults.hpp"
#include "QuorvaneKit/XPCCodableHelpers.hpp"
#include "host/CardSwitch.hpp"
#include "host/HostStatusQuery.hpp"
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
    HostStatus status;
    EXPECT_EQ(lineOf(status, "Host"), "Host:    not running; start it with: quorvane-host run");
    status.isServed = true;
    EXPECT_EQ(lineOf(status, "Host"), "Host:    its ports are taken, but nobody answers there");
    status.state.emplace();
    EXPECT_EQ(lineOf(status, "Host"), "Host:    running, nothing to play");
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

TEST(HostStatus, TellsOfCardAndAddOn) {
    HostStatus status;
    EXPECT_EQ(lineOf(status, "Card"), "Card:    unknown: the shared settings cannot be opened");
    status.hasSharedDefaults = true;
    EXPECT_EQ(lineOf(status, "Card"), "Card:    off; turn it on with: quorvane-host enable");
    status.isEnabled = true;
    status.lastLockHadNoRoom = true;
    EXPECT_TRUE(
        lineOf(status, "Card").starts_with("Card:    on, but the last lock screen left no"));
    status.pendingRemoval.emplace();
    EXPECT_EQ(lineOf(status, "Card"), "Card:    off; the add-on has been asked to remove itself");

    EXPECT_EQ(lineOf(status, "Install"), "Install: no; do so with: quorvane-host install");
    status.place.state = AddOnPlace::State::installed;
    status.place.version = "1.2\n";
    status.place.bundle = "/a/X.app";
    EXPECT_EQ(lineOf(status, "Install"), "Install: version 1.2? as /a/X.app");
    status.place.state = AddOnPlace::State::damaged;
    EXPECT_TRUE(lineOf(status, "Install").starts_with("Install: damaged; mend it with"));
    status.place.state = AddOnPlace::State::foreign;
    status.place.trouble = "/a is no folder";
    EXPECT_EQ(lineOf(status, "Install"), "Install: no; /a is no folder");

    EXPECT_EQ(lineOf(status, "Add-on"), "Add-on:  not running, and never seen");
    status.lastSeen = LockScreenAddOnSighting{.addOnVersion = "1.2.0",
                                              .macOSVersion = "26.1.0",
                                              .supportsThisMacOS = true,
                                              .date = kNow - 24h,
                                              .installID = {}};
    EXPECT_EQ(lineOf(status, "Add-on"),
              "Add-on:  not running; version 1.2.0 was last seen 2025-12-31T00:00:00Z");
    status.lastSeen->date = kNow - 5s;
    EXPECT_EQ(lineOf(status, "Add-on"),
              "Add-on:  does not answer; version 1.2.0 said hello just now");
    status.addOn = AddOnSignals::Status{true, "1.2.1"};
    EXPECT_EQ(lineOf(status, "Add-on"), "Add-on:  running, version 1.2.1, connected");
    status.addOn->isConnected = false;
    status.lastSeen->supportsThisMacOS = false;
    EXPECT_EQ(lineOf(status, "Add-on"),
              "Add-on:  running, version 1.2.1, not connected; waits for an update that draws on "
              "system 26.1.0");
}

const std::string kMainPort{kMessagePortBaseName};
const Bytes kSecret(MessagePortWire::kSecretLength, std::byte{9});

class HostStatusQueryTest : public testing::Test {
protected:
    HostStatus ask() {
        HostStatusQuery query{{.connectPort = ports.connectPort(),
                               .files = store.table(),
                               .clock = clock.clock(),
                               .distributedNotices = notices.distributed(),
                               .sharedSuite = defaults.table(),
                               .addOnDefaults = addOnDefaults.table(),
                               .lookAtPlace = [] { return AddOnPlace{}; }}};
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
    EXPECT_TRUE(status.isServed);
    EXPECT_TRUE(status.isEnabled);
    EXPECT_TRUE(status.lastLockHadNoRoom);
    EXPECT_EQ(status.state, state);
    ASSERT_EQ(ports.sent.size(), 1u);
    EXPECT_EQ(ports.sent[0].messageID, 1);
    EXPECT_EQ(ports.sent[0].body, kSecret);
    EXPECT_EQ(status.addOn, (AddOnSignals::Status{true, "1.0.0"}));
}

TEST_F(HostStatusQueryTest, AnswersThatAreNone) {
    addOnSays = PropertyDictionary{{"version", {std::string{"1"}}}};
    for (const auto& [status, text] :
         {std::pair{kPortReceiveTimeout, "{}"}, {kPortSuccess, ""}, {kPortSuccess, "{}"}}) {
        ports.failures.clear();
        if (status != kPortSuccess) ports.failures[kMainPort] = status;
        reply = copyOf(bytesOf(text));
        const HostStatus told = ask();
        EXPECT_TRUE(told.isServed);
        EXPECT_FALSE(told.state);
        EXPECT_FALSE(told.addOn);
    }
}

TEST(CardSwitch, WritesPostsAndSaysWhatItDid) {
    MemoryDefaults defaults;
    FakeNotices notices;
    MemoryPorts ports;
    int posts = 0;
    const Handle observation =
        notices.darwin().observe("example.quillon.Quorvane.lockScreenConfigurationChanged", [&] {
            ++posts;
            EXPECT_GT(defaults.synchronizations, 0) << "who is told must find it written";
        });
    CardSwitch card{.connectPort = ports.connectPort(),
                    .darwinNotices = notices.darwin(),
                    .sharedSuite = defaults.table()};
    EXPECT_EQ(card.set(true),
              "The card is on.\n"
              "No host is running: it takes effect with the next quorvane-host run.\n");
    const Handle host = ports.serve(kMainPort, {});
    EXPECT_EQ(card.set(true), "The card is already on.\n");
    EXPECT_TRUE(SharedDefaults{defaults.table()}.lockScreenEnabled());
    EXPECT_EQ(card.set(false), "The card is off.\n");
    EXPECT_FALSE(SharedDefaults{defaults.table()}.lockScreenEnabled());
    EXPECT_EQ(posts, 3);

    card.sharedSuite->synchronize = []() -> Result<void> {
        return std::unexpected{PlatformError{.description = "Read-only file system"}};
    };
    EXPECT_EQ(card.set(true).error(),
              "the shared settings cannot be written: Read-only file system");
    card.sharedSuite.reset();
    EXPECT_EQ(card.set(true).error(), "the shared settings cannot be opened");
    EXPECT_EQ(posts, 3);
}

}  // namespace
}  // namespace quorvane
