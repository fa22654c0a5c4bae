#include "host/addon/HostStatus.hpp"

#include <gtest/gtest.h>

#include "QuorvaneKit/link/PortNames.hpp"
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
    using enum AddOnInstallation::State;
    const auto place = [](AddOnInstallation::State state) {
        return AddOnInstallation{.supportDirectory = "/a",
                                 .bundle = "/a/X.app",
                                 .state = state,
                                 .version = "1.2\n",
                                 .problem = "/a is not a folder"};
    };
    const LockScreenAddOnSighting seen{"1.2.0", "26.1.0", true, kNow - 5s, {}};
    const LockScreenAddOnSighting tooOld{"1.2.0", "26.1.0", false, kNow - 5s, {}};
    const std::pair<HostStatus, const char*> rows[] = {
        {{.state = std::unexpected{HostStatus::Failure::noAnswer},
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
          .place = place(damaged),
          .isAddOnRunning = true},
         "Host:    running, nothing playing\n"
         "Card:    on, but the last lock screen had no room for it (make it smaller with a lower "
         "QUORVANE_SCALE)\n"
         "Install: damaged (repair with: quorvane-host install; or run: quorvane-host remove)\n"
         "Add-on:  running, but not answering; never seen\n"},
        {{.state = playing(XPCPlayerState::paused, 61.9, {"A\x1b[2J\u009b1mB", ""}),
          .hasSharedDefaults = true,
          .isEnabled = true,
          .pendingRemoval = LockScreenPendingRemoval{},
          .place = place(foreign),
          .addOn = AddOnSignals::Status{true, "1.2.1"}},
         "Host:    running, paused \"A?[2J?1mB\" (1:01)\n"
         "Card:    off; the add-on has been asked to remove itself\n"
         "Install: no; /a is not a folder\n"
         "Add-on:  running, version 1.2.1, connected\n"},
        {{.state = playing(XPCPlayerState::playing, 61.9,
                           {.title = "A\u00e9", .artist = "B", .duration = 600}),
          .lastSeen = tooOld,
          .addOn = AddOnSignals::Status{false, "1.2.1"}},
         "Host:    running, playing \"A\u00e9\" by B (1:11 of 10:00)\n"
         "Card:    unknown: the shared settings cannot be opened\n"
         "Install: not installed (run: quorvane-host install)\n"
         "Add-on:  running, version 1.2.1, not connected; needs an update that supports system "
         "26.1.0\n"},
        {{.state = playing(XPCPlayerState::stopped, 1e300, {"", ""}),
          .hasSharedDefaults = true,
          .silentPlayers = {"vlc"}},
         "Host:    running, stopped (150000000000000:00)\n"
         "Card:    off\n"
         "Install: not installed (run: quorvane-host install)\n"
         "Add-on:  not running; never seen\n"
         "Player:  vlc does not answer and is not followed\n"},
    };
    for (const auto& [status, text] : rows) EXPECT_EQ(status.text(kNow), text);
}

TEST(HostStatusQuery, CollectsTheAnswersOfHostAndAddOn) {
    MemoryFileStore store{.files = {{"/container/ipc-secret", Bytes(32)}}};
    ManualClock clock;
    FakeNotices notices;
    MemoryDefaults addOnDefaults{.values = {{"lastLockHadNoRoom", {true}}}};
    MemoryPorts ports;
    const std::string mainPort{kMessagePortBaseName};
    const Handle host = ports.serve(mainPort, [](auto, auto) { return copyOf(bytesOf("{}")); });
    const auto ask = [&](std::int32_t failure, const PropertyDictionary& addOnSays) {
        if (failure != kPortSuccess) ports.failures[mainPort] = failure;
        HostStatusQuery query{
            {.control = {.applications =
                             {.running = [](const auto&) { return std::vector<RunningCopy>(); },
                              .current = {},
                              .terminate = {}},
                         .notices = notices.distributed(),
                         .clock = clock.clock()},
             .connectPort = ports.connectPort(),
             .addOnDefaults = addOnDefaults.table()},
            store.table()};
        std::vector<HostStatus> answers;
        query.start([&](HostStatus status) { answers.push_back(std::move(status)); });
        notices.deliver(AddOnSignals::kStatus, addOnSays);
        EXPECT_EQ(answers.empty(), addOnSays.empty()) << "does not wait for a second answer";
        clock.advance(500ms);
        return answers.size() == 1 ? answers[0] : HostStatus{};
    };
    using enum HostStatus::Failure;
    const AddOnSignals::Status answer{true, "1.0.0"};
    HostStatus status = ask(kPortSuccess, answer.userInfo());
    EXPECT_TRUE(status.lastLockHadNoRoom);
    EXPECT_EQ(status.state, std::unexpected{noAnswer}) << "it does not decode";
    EXPECT_EQ(status.addOn, answer);
    EXPECT_EQ(ask(kPortSendTimeout, {}).state, std::unexpected{late});
    status = ask(kPortBecameInvalid, {});
    EXPECT_EQ(status.state, std::unexpected{noAnswer});
    EXPECT_FALSE(status.addOn);
}

}  // namespace
}  // namespace quorvane
