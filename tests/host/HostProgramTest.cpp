// quorvane-host as a process, with a private bus and private folders.

#include <gtest/gtest.h>

#include <regex>

#include "platform/linux/bus/NoticesLinux.hpp"
#include "tests/end_to_end/LoggedProcess.hpp"
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
    HostProgramTest() {
        bus.useHere();
        script = folder.write("script.json", kScript);
    }

    std::vector<std::string> environment() const {
        return {bus.environment(),
                "HOME=" + folder.path().string(),
                "DISPLAY=",
                "WAYLAND_DISPLAY=",
                "XDG_CURRENT_DESKTOP=",
                "XDG_RUNTIME_DIR=" + folder.path().string(),
                "XDG_CONFIG_HOME=" + (folder / "config").string(),
                "XDG_DATA_HOME=" + (folder / "data").string(),
                "QUORVANE_LOG=stderr"};
    }
    LoggedProcess startHost() {
        return LoggedProcess{{HOST_PROGRAM, "run", "--script", script.string()}, environment()};
    }
    using Run = LoggedProcess::Run;
    Run run(std::vector<std::string> arguments, const std::string& variable = "DISPLAY=") {
        arguments.insert(arguments.begin(), HOST_PROGRAM);
        auto variables = environment();
        variables.push_back(variable);
        return LoggedProcess::run(arguments, variables);
    }

    PrivateBus bus;
    TemporaryFolder folder;
    std::filesystem::path script;
};

TEST_F(HostProgramTest, ExplainsMistakes) {
    Run result = run({"sing"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.text, "quorvane-host: unknown command 'sing'\nTry: quorvane-host --help\n");
    result = run({"--script", (folder / "absent.json").string()});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.text.ends_with("absent.json: No such file or directory\n")) << result.text;
    EXPECT_TRUE(std::regex_match(run({"--version"}).text,
                                 std::regex{"quorvane-host \\d+\\.\\d+\\.\\d+\n"}));
}

TEST_F(HostProgramTest, TellsItsStatusAndSwitchesTheCard) {
    Run result = run({"status"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.text.starts_with("Host:    Quorvane is not reachable")) << result.text;
    LoggedProcess host = startHost();
    ASSERT_TRUE(host.says("the card is off (turn on with"));
    ASSERT_TRUE(host.says("serving;"));
    result = run({"enable"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.text, "The card is on.\n");
    result = run({"status"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.text,
              "Host:    running, paused \"Low Tide\" by The Quiet Harbour (0:30 of 3:34)\n"
              "Card:    on\n"
              "Install: not installed (run: quorvane-host install)\n"
              "Add-on:  not running; never seen\n"
              "Session: there is no session to show a card in: neither WAYLAND_DISPLAY nor DISPLAY "
              "is set; use a terminal of the session\n");
    const auto secret = folder / "data/group.example.quillon.Quorvane/ipc-secret";
    EXPECT_EQ(modeOf(secret), 0600);
    EXPECT_EQ(file_size(secret), 32u);

    // `status` does not wait long for a host that hangs.
    host.process().signal(SIGSTOP);
    result = run({"status"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.text.starts_with("Host:    Quorvane did not answer in time")) << result.text;
}

TEST_F(HostProgramTest, ASecondHostWaitsAndTakesOver) {
    LoggedProcess first = startHost();
    ASSERT_TRUE(first.says("serving;"));
    LoggedProcess impatient = startHost();
    ASSERT_TRUE(
        impatient.says("another quorvane-host is serving this login; waiting for it to end"));
    ASSERT_TRUE(impatient.says("busy (attempt 1)"));
    EXPECT_EQ(impatient.count(" error: "), 0) << impatient.log();
    impatient.process().signal(
        SIGINT);  // cancels its waits and must not make it retry without a pause
    EXPECT_EQ(impatient.process().exitStatus(5s), 0);
    EXPECT_EQ(impatient.count("host: ending"), 0) << "it has not served";
    EXPECT_EQ(impatient.count("busy (attempt 15)"), 0);

    LoggedProcess second = startHost();
    ASSERT_TRUE(second.says("busy (attempt 1)"));
    first.process().end(SIGKILL);
    EXPECT_TRUE(second.says("serving;", 5s)) << second.log();
}

TEST_F(HostProgramTest, SaysWhatTheSessionLacks) {
    const std::string noFolder = "XDG_RUNTIME_DIR=" + (folder / "absent").string();
    Run result = run({"run", "--script", script.string()}, noFolder);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.text.find("there is no runtime folder"), std::string::npos) << result.text;
    EXPECT_EQ(result.text.find("busy"), std::string::npos) << result.text;
    const std::pair<std::string, const char*> rows[] = {
        {noFolder, "Session: there is no runtime folder"},
        {"DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent", "Session: there is no session bus"},
        {"WAYLAND_DISPLAY=wayland-0", "Session: no card can appear: this Wayland compositor"}};
    for (const auto& [variable, line] : rows)
        EXPECT_NE(run({"status"}, variable).text.find(line), std::string::npos) << line;
    folder.write("example.quillon.Quorvane", "a file");
    EXPECT_NE(run({"run"}).text.find("not a private one of yours"), std::string::npos);
}

TEST_F(HostProgramTest, SaysGoodbyeHoweverItIsAskedToEnd) {
    for (const int signal : {SIGINT, SIGTERM}) {
        EventLoop loop;
        SessionBus connection{loop, Logger{}};
        const DarwinNotices notices = makeDarwinNotices(connection, Logger{});
        bool isOver = false;
        const std::string goodbye = "example.quillon.Quorvane.mainAppWillTerminate";
        const Handle observation = notices.observe(goodbye, [&] { isOver = true; });
        notices.post(goodbye);  // arrives once the bus has the match
        ASSERT_TRUE(runUntil(loop, [&] { return std::exchange(isOver, false); }));
        LoggedProcess host = startHost();
        ASSERT_TRUE(host.says("serving;"));
        host.process().signal(signal);
        EXPECT_TRUE(runUntil(loop, [&] { return isOver; })) << signal;
        const auto status = host.process().wait(20s);
        ASSERT_TRUE(status);
        if (signal == SIGINT)
            EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0);
        else
            EXPECT_TRUE(WIFSIGNALED(*status) && WTERMSIG(*status) == SIGTERM);
    }
}

}  // namespace
}  // namespace quorvane
