#include "platform/linux/processes/LogLinux.hpp"

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

#include <algorithm>
#include <fstream>

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
    EXPECT_EQ(line("a\n2026 app fault: b"), start + "a?2026 app fault: b <private>\n");
    EXPECT_EQ(line("\t\r\x1b[2J\x7f"), start + "???[2J? <private>\n");
    EXPECT_EQ(line("\u009B2J\u00A0\u0100"), start + "?2J\u00A0\u0100 <private>\n");
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
    setenv("QUORVANE_LOG_PRIVATE", "yes", 1);
    EXPECT_FALSE(LogOptions::fromEnvironment("test").showsPrivate);
    EXPECT_TRUE(LogOptions::fromEnvironment("test").file.empty());
    unsetenv("QUORVANE_LOG");
    unsetenv("QUORVANE_LOG_PRIVATE");
    const std::string text = folder.read("log");
    EXPECT_EQ(std::ranges::count(text, '\n'), 10);
    EXPECT_EQ(text.find("secret"), std::string::npos);
    for (const char* line : {"Z app debug: debug", "Z app info: info", "Z app default: standard",
                             "Z app error: error", "Z app fault: fault?of two lines\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line;
}

// The test's own journal is at the one path that programs use, so the child needs a private mount
// namespace.
bool enterPrivateRun() {
    const std::string mapping = "0 " + std::to_string(geteuid()) + " 1";
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        std::ofstream{"/proc/self/uid_map"} << mapping;
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", "/run", "tmpfs", 0, nullptr) == 0 && mkdir("/run/systemd", 0755) == 0 &&
           mkdir("/run/systemd/journal", 0755) == 0;
}

int logToPrivateJournal(const ForkedChild::Say& say) {
    if (!enterPrivateRun()) return 2;
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
    std::string text;
    for (auto line = child.line(); !line.empty(); line = child.line()) text += line + "\n";
    if (WEXITSTATUS(child.wait()) == 2)
        GTEST_SKIP() << "this machine allows no private mount namespace";
    const std::string fields =
        "SUBSYSTEM=subsystem\nCATEGORY=app\nSYSLOG_IDENTIFIER=identifier\n--\n";
    EXPECT_TRUE(text.starts_with(
        "MESSAGE=debug <private>\nPRIORITY=7\n" + fields + "MESSAGE=info\nPRIORITY=6\n" + fields +
        "MESSAGE=standard\nPRIORITY=5\n" + fields + "MESSAGE=error\nPRIORITY=3\n" + fields))
        << text;
    // The journal's format for a value with a line end: the name alone, the size, the bytes.
    EXPECT_NE(text.find("--\nMESSAGE\n"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("of two lines\nPRIORITY=2\n" + fields)) << text;
}

}  // namespace
}  // namespace quorvane
