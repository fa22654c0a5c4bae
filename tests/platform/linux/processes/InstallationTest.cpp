// The live tables of an application's life cycle, over real files and processes.
#include <gtest/gtest.h>

#include "platform/linux/files/FileManagerLinux.hpp"
#include "platform/linux/processes/DetachedProcess.hpp"
#include "platform/linux/processes/LoginItemLinux.hpp"
#include "platform/linux/processes/RunningApplicationsLinux.hpp"
#include "tests/support/SmallBundle.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// A unique name, so that no other program of this user is counted.
const std::string kIdentifier = "example.quillon.Test." + std::to_string(getpid());

struct LoginItemTest : testing::Test {
    TemporaryFolder folder;
    const std::string name = "autostart/" + kIdentifier + ".desktop";

    static ProcessInfo processOf(const fs::path& bundle) {
        ProcessInfo process{};
        process.bundle = bundle;
        process.bundleProperties = {{"CFBundleIdentifier", {kIdentifier}},
                                    {"CFBundleExecutable", {std::string{"Sleeper"}}}};
        return process;
    }
    LoginItemClient item(const fs::path& bundle) {
        return makeLoginItem(folder / "autostart", processOf(bundle));
    }
};

TEST_F(LoginItemTest, IsAnEntryThatTheUserMaySwitchOff) {
    const LoginItemClient own = item("/a \"$`\\%/X.app");
    EXPECT_EQ(own.status(), 0);
    ASSERT_TRUE(own.registerItem());
    EXPECT_EQ(own.status(), 1);
    EXPECT_EQ(item("/moved/X.app").status(), 0) << "the entry starts another copy";
    const std::string entry = folder.read(name);
    EXPECT_NE(entry.find("Exec=\"/a \\\\\"\\\\$\\\\`\\\\\\\\%%/X.app/Contents/Linux/Sleeper\"\n"),
              std::string::npos)
        << entry;
    const std::pair<const char*, int> rows[] = {{"Hidden=true", 2},
                                                {"Hidden = true", 2},
                                                {"X-GNOME-Autostart-enabled=false", 2},
                                                {"X-MATE-Autostart-enabled=false", 2},
                                                {"Hidden=false", 1},
                                                {"[Desktop Action x]\nHidden=true", 1}};
    for (const auto& [line, status] : rows) {
        folder.write(name, std::string{"[Desktop Entry]\n"} + line + "\n" + entry);
        EXPECT_EQ(own.status(), status) << line;
    }
    EXPECT_TRUE(own.unregisterItem());
    EXPECT_FALSE(fs::exists(folder / name));
    EXPECT_TRUE(own.unregisterItem()) << "again";
}

TEST_F(LoginItemTest, TakesThePermissionAboveTheLockScreenWithIt) {
    setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    const std::string entry = "data/applications/" + kIdentifier + ".desktop";
    ASSERT_TRUE(permitAboveLock("/a b/X.app/Surface", processOf("/a b/X.app")));
    EXPECT_NE(folder.read(entry).find("\nExec=\"/a b/X.app/Surface\"\n"), std::string::npos);
    EXPECT_TRUE(
        folder.read(entry).ends_with("\nX-KDE-Wayland-Interfaces=kde_lockscreen_overlay_v1\n"));
    EXPECT_TRUE(item("/a b/X.app").unregisterItem());
    EXPECT_FALSE(fs::exists(folder / entry));
    EXPECT_FALSE(permitAboveLock("/a b/X.app/Surface", ProcessInfo{})) << "not from a bundle";
}

TEST_F(LoginItemTest, FailsWhereItCannotBe) {
    const LoginItemClient none = makeLoginItem(folder / "autostart", {});
    EXPECT_EQ(none.status(), 3);
    EXPECT_FALSE(none.registerItem());
    folder.write("autostart", "a file in the folder's place");
    EXPECT_EQ(item("/X.app").registerItem().error().code, ENOTDIR);
}

TEST(FileManager, TellsWhatIsMissingFromWhatRefuses) {
    const TemporaryFolder folder;
    const FileManagerClient files = makeFileManager();
    folder.write("outside/kept", "");
    fs::create_symlink(folder / "outside", folder / "link");
    ASSERT_TRUE(files.removeItem(folder / "link"));
    EXPECT_FALSE(files.fileExists(folder / "link"));
    EXPECT_TRUE(files.fileExists(folder / "outside/kept"));
    const PlatformError missing = files.removeItem(folder / "none").error();
    EXPECT_EQ(missing.domain, PlatformError::Domain::cocoa);
    EXPECT_EQ(missing.code, FileManagerClient::kNoSuchFile);
    const PlatformError refused = files.removeItem("/proc/self/status").error();
    EXPECT_EQ(refused.domain, PlatformError::Domain::posix);
    EXPECT_FALSE(files.fileExists(folder / "outside/kept/below"));

    makeSmallBundle(folder / "X.app", kIdentifier);
    EXPECT_EQ(files.identity(folder / "X.app"), kIdentifier);
    folder.write("X.app/Contents/Info.plist", "{ CFBundleIdentifier = (a); }");
    EXPECT_EQ(files.identity(folder / "X.app"), std::nullopt);
    EXPECT_EQ(files.identity(folder / "none.app"), std::nullopt);
}

struct RunningApplicationsTest : testing::Test {
    TemporaryFolder folder;
    const RunningApplications applications = [this] {
        unsetenv("DISPLAY");
        setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
        return makeRunningApplications();
    }();

    RunningApplicationsTest() { makeSmallBundle(folder / "X.app", kIdentifier); }
    ~RunningApplicationsTest() override {
        for (const std::int32_t pid : pids()) kill(pid, SIGKILL);
    }
    std::vector<std::int32_t> pids() const {
        std::vector<std::int32_t> found;
        for (const RunningCopy& copy : applications.running(kIdentifier)) found.push_back(copy.pid);
        return found;
    }
    // Waits, because a child is still this program's own image before its exec.
    bool finds(const std::vector<std::int32_t>& expected) const {
        return eventually([&] { return pids() == expected; });
    }
};

TEST_F(RunningApplicationsTest, AreOneLoginsProcessesOutOfABundle) {
    makeSmallBundle(folder / "Y.app", kIdentifier + ".other");
    ChildProcess copy = startSmallBundle(folder / "X.app");
    ASSERT_TRUE(finds({copy.pid()}));
    const ChildProcess other = startSmallBundle(folder / "Y.app");
    const ChildProcess elsewhere = startSmallBundle(folder / "X.app", {"XDG_RUNTIME_DIR=/other"});
    ChildProcess second = startSmallBundle(folder / "X.app");
    ASSERT_TRUE(finds({copy.pid(), second.pid()}));

    applications.terminate(copy.pid());
    EXPECT_TRUE(finds({second.pid()})) << "a zombie does not count either";
    const auto status = copy.wait(20s);
    EXPECT_TRUE(status && WIFSIGNALED(*status) && WTERMSIG(*status) == SIGINT);
    applications.terminate(getpid());  // not an application: no effect
    applications.terminate(1 << 30);
}

TEST_F(RunningApplicationsTest, AreStartedToLiveOnTheirOwn) {
    fs::create_directory_symlink(folder / "X.app", folder / "link");
    signal(SIGINT, SIG_IGN);  // as for a script's background command
    ASSERT_TRUE(openApplication(folder / "link", {"1000"}));
    signal(SIGINT, SIG_DFL);
    const auto copies = pids();
    ASSERT_EQ(copies.size(), 1u) << "it runs when the call returns";
    const auto process = fs::path{"/proc"} / std::to_string(copies[0]);
    EXPECT_EQ(waitpid(copies[0], nullptr, WNOHANG), -1) << "it is not our child";
    EXPECT_NE(getsid(copies[0]), getsid(0));
    for (const char* standard : {"fd/0", "fd/1", "fd/2"})
        EXPECT_EQ(fs::read_symlink(process / standard), "/dev/null");
    EXPECT_EQ(fs::read_symlink(process / "cwd"), "/");
    applications.terminate(copies[0]);
    EXPECT_TRUE(finds({})) << "the interrupt is not ignored";
}

TEST_F(RunningApplicationsTest, SayWhyTheyAreNotStarted) {
    const auto failure = [](const fs::path& bundle) {
        return openApplication(bundle, {}).error().description;
    };
    EXPECT_EQ(failure("/none.app"), "/none.app: No such file or directory");
    EXPECT_NE(failure(folder.path()).find("not an application"), std::string::npos);
    folder.write("X.app/Contents/Linux/Sleeper", "no program");
    EXPECT_NE(failure(folder / "X.app").find("Sleeper: Exec format error"), std::string::npos);
}

}  // namespace
}  // namespace quorvane
