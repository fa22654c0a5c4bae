#include "platform/linux/processes/LogLinux.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <fstream>
#include <regex>

#include "tests/support/ForkedChild.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

TEST(LogLinuxTest, StandardErrorGetsOneLineEach) {
    const auto line = [](std::string_view text, bool showsPrivate = false) {
        const LogArgument arguments[] = {text, text};
        return standardErrorLine(
            {"subsystem", "player", LogLevel::info, "state: %{public}s %{private}s", arguments},
            WallTime{std::chrono::milliseconds{1'767'225'600'042}}, showsPrivate);
    };
    const std::string start = "2026-01-01T00:00:00.042Z player info: state: ";
    EXPECT_EQ(line("ü"), start + "ü <private>\n");
    EXPECT_EQ(line("ü", true), start + "ü ü\n");
    EXPECT_EQ(line("a\n2026 app fault: b"), start + "a\\n2026 app fault: b <private>\n");
    EXPECT_EQ(line("\t\r\x1b[2J\x7f"), start + "\\t\\x0d\\x1b[2J\\x7f <private>\n");
    EXPECT_EQ(line("\u009B2J\u00A0\u0100"), start + "\\x9b2J\u00A0\u0100 <private>\n");
}

// Logs a line of each level, as the program would.
void logAll(LogOptions options) {
    const Logger log{makeLogSink(std::move(options)), "subsystem", "app"};
    const std::string_view secret = "secret";
    log.debug("debug %{private}s", secret);
    log.info("info");
    log.standard("standard");
    log.error("error");
    log.fault("fault\nof two lines");
}

TEST(LogLinuxTest, AFileTakesTheLinesOfSeveralPrograms) {
    const TemporaryFolder folder;
    setenv("QUORVANE_LOG", (folder / "log").c_str(), 1);
    logAll(LogOptions::fromEnvironment("one"));
    logAll(LogOptions::fromEnvironment("another"));
    setenv("QUORVANE_LOG", "relative", 1);
    EXPECT_TRUE(LogOptions::fromEnvironment("test").file.empty());
    unsetenv("QUORVANE_LOG");
    const std::string text = folder.read("log");
    EXPECT_EQ(std::ranges::count(text, '\n'), 10);
    EXPECT_EQ(text.find("secret"), std::string::npos);
}

TEST(LogLinuxTest, TheEnvironmentChooses) {
    for (const char* shown : {"<private>", "secret"}) {
        ForkedChild child{[&](const ForkedChild::Say&) {
            setenv("QUORVANE_LOG", "stderr", 1);
            setenv("QUORVANE_LOG_PRIVATE", shown[0] == 's' ? "1" : "yes", 1);
            logAll(LogOptions::fromEnvironment("test"));
            return 0;
        }};
        const std::regex stamp{"\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z "};
        for (const std::string& expected :
             {std::string{"app debug: debug "} + shown, std::string{"app info: info"},
              std::string{"app default: standard"}, std::string{"app error: error"},
              std::string{"app fault: fault\\nof two lines"}, std::string{}}) {
            const std::string line = child.line();
            EXPECT_EQ(std::regex_replace(line, stamp, ""), expected);
            EXPECT_TRUE(line.empty() || std::regex_search(line, stamp));
        }
    }
}

// A journal of the test's own stands at the one place where programs look for it, which needs a
// file system view of the child's own.
bool enterPrivateRun() {
    const std::string mapping = "0 " + std::to_string(geteuid()) + " 1";
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        std::ofstream{"/proc/self/uid_map"} << mapping;
    }
    if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
    if (mount("tmpfs", "/run", "tmpfs", 0, nullptr) != 0) return false;
    return mkdir("/run/systemd", 0755) == 0 && mkdir("/run/systemd/journal", 0755) == 0;
}

int logToPrivateJournal(const ForkedChild::Say& say) {
    if (!enterPrivateRun()) {
        say("no namespace");
        return 0;
    }
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = "/run/systemd/journal/socket"};
    const int journal = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (bind(journal, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) return 1;
    logAll({.identifier = "identifier"});
    char record[4096];
    for (ssize_t size = 0; (size = recv(journal, record, sizeof record, 0)) > 0;)
        say(std::string{record, static_cast<std::size_t>(size)} + "--");
    return 0;
}

TEST(LogLinuxTest, TheJournalGetsFields) {
    ForkedChild child{logToPrivateJournal};
    std::vector<std::vector<std::string>> records(1);
    bool isSupported = true;
    for (auto line = child.line(); isSupported && !line.empty(); line = child.line()) {
        isSupported = line != "no namespace";
        if (line == "--")
            records.emplace_back();
        else
            records.back().push_back(line);
    }
    if (!isSupported) GTEST_SKIP() << "this machine gives no file system view of one's own";
    ASSERT_EQ(records.size(), 6u);
    const auto record = [](const char* message, const char* priority) {
        return std::vector<std::string>{message, priority, "SUBSYSTEM=subsystem", "CATEGORY=app",
                                        "SYSLOG_IDENTIFIER=identifier"};
    };
    EXPECT_EQ(records[0], record("MESSAGE=debug <private>", "PRIORITY=7"));
    EXPECT_EQ(records[1], record("MESSAGE=info", "PRIORITY=6"));
    EXPECT_EQ(records[2], record("MESSAGE=standard", "PRIORITY=5"));
    EXPECT_EQ(records[3], record("MESSAGE=error", "PRIORITY=3"));
    // The journal's form for a value with a line end: its name alone, its size, its bytes.
    EXPECT_EQ(records[4].front(), "MESSAGE");
    EXPECT_TRUE(std::ranges::count(records[4], "of two lines"));
    EXPECT_TRUE(std::ranges::count(records[4], "PRIORITY=2"));
}

}  // namespace
}  // namespace quorvane
