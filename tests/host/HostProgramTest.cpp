// quorvane-host as a process, with a private bus and private folders.

#include <gtest/gtest.h>

#include "platform/linux/bus/NoticesLinux.hpp"
#include "platform/linux/bus/ScreenSaverSignals.hpp"
#include "tests/end_to_end/LoggedProcess.hpp"
#include "tests/support/FakeBusService.hpp"
#include "tests/support/LoopRunner.hpp"
#include "tests/support/PrivateBus.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view kScript =
    R"({"startPosition": 30, "autoplay": false,
        "tracks": [{"title": "Low Tide", "artist": "The Quiet Harbour", "duration": 214}]})";

class HostProgramTest : public testing::Test {
protected:
    HostProgramTest() { bus.useHere(); }

    std::vector<std::string> environment(const std::string& variable = "DISPLAY=") const {
        return {bus.environment(),
                "HOME=" + folder.path().string(),
                "DISPLAY=",
                "WAYLAND_DISPLAY=",
                "XDG_CURRENT_DESKTOP=",
                "XDG_RUNTIME_DIR=" + folder.path().string(),
                "XDG_CONFIG_HOME=" + (folder / "config").string(),
                "XDG_DATA_HOME=" + (folder / "data").string(),
                "QUORVANE_LOG=stderr",
                variable};
    }
    LoggedProcess startHost() {
        return LoggedProcess{{HOST_PROGRAM, "--script", folder.write("script.json", kScript)},
                             environment()};
    }
    // The program's two outputs, if it ends with this status.
    std::string run(std::vector<std::string> arguments, int status,
                    const std::string& variable = "DISPLAY=") {
        arguments.insert(arguments.begin(), HOST_PROGRAM);
        const auto result = LoggedProcess::run(arguments, environment(variable));
        EXPECT_EQ(result.status, status) << result.text;
        return result.text;
    }

    PrivateBus bus;
    TemporaryFolder folder;
};

TEST_F(HostProgramTest, ExplainsMistakesAndWhatTheSessionLacks) {
    EXPECT_EQ(run({"sing"}, 2),
              "quorvane-host: unknown command 'sing'\nTry: quorvane-host --help\n");
    EXPECT_TRUE(run({"--version"}, 0).starts_with("quorvane-host "));
    const std::string noFolder = "XDG_RUNTIME_DIR=" + (folder / "absent").string();
    folder.write("example.quillon.Quorvane", "a file");
    const std::tuple<std::vector<std::string>, std::string, const char*> rows[] = {
        {{"--script", "absent.json"}, "DISPLAY=", "absent.json: No such file or directory\n"},
        {{"run"}, "DISPLAY=", "must belong to you alone"},
        {{"run"}, noFolder, "there is no folder for the sockets"},
        {{"status"}, noFolder, "Session: there is no folder for the sockets"},
        {{"status"},
         "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent",
         "Session: there is no session bus"},
        {{"status"},
         "WAYLAND_DISPLAY=wayland-0",
         "Session: no card can appear: this Wayland compositor"}};
    for (const auto& [arguments, variable, words] : rows)
        EXPECT_NE(run(arguments, 1, variable).find(words), std::string::npos) << words;
}

TEST_F(HostProgramTest, TellsOfALockFromALockersReadinessToItsEnd) {
    EventLoop loop;
    SessionBus session{loop, {}};
    ScreenSaverSignals savers{session, kScreenSaverServices, [] {}};
    const auto becomes = [&](bool isLocked) {
        return runUntil(loop, [&] { return savers.isActive().value_or(false) == isLocked; });
    };
    const std::string end = (folder / "end").string();
    LoggedProcess host{{HOST_PROGRAM, "lock", "--", "sh", "-c",
                        "echo >&3; until [ -e " + end + " ]; do sleep 0.1; done"},
                       environment()};
    EXPECT_TRUE(becomes(true));
    EXPECT_NE(run({"lock", "--", "true"}, 1).find("is running"), std::string::npos);
    folder.write("end", "");
    EXPECT_TRUE(becomes(false));
    LoggedProcess late{{HOST_PROGRAM, "lock", "--", "sh", "-c", "exec sleep 60 >/dev/null 2>&1"},
                       environment()};
    EXPECT_TRUE(becomes(true)) << "a locker that reports nothing counts as ready after a while";
    late.process().end(SIGKILL);
    EXPECT_TRUE(becomes(false)) << "a killed command cannot report the unlock";
    EXPECT_EQ(run({"lock", "--", "sh", "-c", "exit 7"}, 7), "");
}

TEST_F(HostProgramTest, TellsItsStatusAndSwitchesTheCard) {
    EXPECT_TRUE(run({"status"}, 1).starts_with("Host:    Quorvane is not reachable"));
    LoggedProcess host = startHost();
    ASSERT_TRUE(host.says("the card is off (turn on with"));
    ASSERT_TRUE(host.says("serving;"));
    EXPECT_EQ(run({"enable"}, 0), "The card is on.\n");
    EXPECT_EQ(run({"players"}, 0), "No players to follow.\n");
    EXPECT_EQ(run({"status"}, 0),
              "Host:    running, paused \"Low Tide\" by The Quiet Harbour (0:30 of 3:34)\n"
              "Card:    on\n"
              "Install: not installed (run: quorvane-host install)\n"
              "Add-on:  not running; never seen\n"
              "Session: there is no session to show a card in: neither WAYLAND_DISPLAY nor DISPLAY "
              "is set; use a terminal of the session\n");
    EXPECT_EQ(modeOf(folder / "data/group.example.quillon.Quorvane/ipc-secret"), 0600);
    // `status` does not wait long for a host that hangs.
    host.process().signal(SIGSTOP);
    EXPECT_TRUE(run({"status"}, 1).starts_with("Host:    Quorvane did not answer in time"));
}

TEST_F(HostProgramTest, ASecondHostWaitsAndTakesOver) {
    LoggedProcess first = startHost();
    ASSERT_TRUE(first.says("serving;"));
    const std::string secret = "data/group.example.quillon.Quorvane/ipc-secret";
    const std::string made = folder.read(secret);
    LoggedProcess impatient = startHost();
    ASSERT_TRUE(
        impatient.says("another quorvane-host is serving this login; waiting for it to end"));
    ASSERT_TRUE(impatient.says("busy (attempt 1)"));
    // Cancels its waits and must not make it retry without a pause.
    impatient.process().signal(SIGINT);
    EXPECT_EQ(impatient.process().exitStatus(5s), 0);
    EXPECT_EQ(impatient.count("busy (attempt 15)"), 0);

    LoggedProcess second = startHost();
    ASSERT_TRUE(second.says("busy (attempt 1)"));
    first.process().end(SIGKILL);
    EXPECT_TRUE(second.says("serving;", 5s)) << second.log();
    EXPECT_EQ(folder.read(secret), made);
}

TEST_F(HostProgramTest, FetchesArtworkWhenTheUserWantsIt) {
    EventLoop loop;
    FakeBusService player{loop, bus.address(), "org.mpris.MediaPlayer2.web",
                          [](const std::string& member, sd_bus_message*, sd_bus_message* reply) {
                              return member == "GetAll" &&
                                     sd_bus_message_append(
                                         reply, "a{sv}", 2, "PlaybackStatus", "s", "Playing",
                                         "Metadata", "a{sv}", 2, "xesam:title", "s", "Low Tide",
                                         "mpris:artUrl", "s", "https://127.0.0.1:1/a") >= 0;
                          }};
    LoggedProcess host{{HOST_PROGRAM}, environment("QUORVANE_LOG_PRIVATE=1")};
    const auto says = [&](const char* text) {
        return eventually([&] {
            runUntil(
                loop, [] { return false; }, 10ms);  // the player answers
            return host.count(text) > 0;
        });
    };
    ASSERT_TRUE(says("players: following org.mpris.MediaPlayer2.web")) << host.log();
    EXPECT_EQ(host.count("no artwork"), 0);
    run({"set", "fetch-artwork", "on"}, 0);
    EXPECT_TRUE(says("players: no artwork: the server is not on the public Internet"))
        << host.log();
}

TEST_F(HostProgramTest, SaysGoodbyeHoweverItIsAskedToEnd) {
    EventLoop loop;
    SessionBus connection{loop, Logger{}};
    const DarwinNotices notices = makeDarwinNotices(connection, Logger{});
    bool isOver = false;
    const std::string goodbye = "example.quillon.Quorvane.mainAppWillTerminate";
    const Handle observation = notices.observe(goodbye, [&] { isOver = true; });
    notices.post(goodbye);  // arrives once the bus has the match
    for (const int signal : {SIGINT, SIGTERM}) {
        ASSERT_TRUE(runUntil(loop, [&] { return std::exchange(isOver, false); }));
        LoggedProcess host = startHost();
        ASSERT_TRUE(host.says("serving;"));
        host.process().signal(signal);
        EXPECT_EQ(host.process().wait(20s), signal == SIGINT ? 0 : SIGTERM) << "its wait status";
    }
    EXPECT_TRUE(runUntil(loop, [&] { return isOver; }));
}

}  // namespace
}  // namespace quorvane
