// The live tables of an application's life, over real files and processes.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

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

// A name of its own, so that no other program of this user is counted.
const std::string kIdentifier = "example.quillon.Test." + std::to_string(getpid());

struct LoginItemTest : testing::Test {
    TemporaryFolder folder;
    fs::path file = folder / ("autostart/" + kIdentifier + ".desktop");

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
    std::int64_t statusWith(const std::string& line) {
        folder.write("autostart/" + kIdentifier + ".desktop",
                     "[Desktop Entry]\n" + line + "\n" + folder.read("entry"));
        return item("/a b/X.app").status();
    }
};

TEST_F(LoginItemTest, IsAnEntryThatTheUserMaySwitchOff) {
    const LoginItemClient own = item("/a b/X.app");
    EXPECT_EQ(own.status(), 0);
    ASSERT_TRUE(own.registerItem());
    EXPECT_EQ(own.status(), 1);
    EXPECT_EQ(item("/moved/X.app").status(), 0) << "the entry starts another copy";
    EXPECT_TRUE(folder.read("autostart/" + kIdentifier + ".desktop")
                    .find("Exec=\"/a b/X.app/Contents/Linux/Sleeper\"\n") != std::string::npos);

    fs::copy_file(file, folder / "entry");
    EXPECT_EQ(statusWith("# as it was"), 1);
    for (const char* off : {"Hidden=true", "Hidden = true", "X-GNOME-Autostart-enabled=false",
                            "X-MATE-Autostart-enabled=false"})
        EXPECT_EQ(statusWith(off), 2) << off;
    EXPECT_EQ(statusWith("Hidden=false"), 1);
    EXPECT_EQ(statusWith("[Desktop Action x]\nHidden=true"), 1);

    EXPECT_TRUE(own.unregisterItem());
    EXPECT_FALSE(fs::exists(file));
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

TEST_F(LoginItemTest, SpellsAwkwardPathsAsDesktopFilesDo) {
    ASSERT_TRUE(item("/a \"$`\\%/X.app").registerItem());
    EXPECT_EQ(item("/a \"$`\\%/X.app").status(), 1);
    EXPECT_TRUE(folder.read("autostart/" + kIdentifier + ".desktop")
                    .find("Exec=\"/a \\\\\"\\\\$\\\\`\\\\\\\\%%/X.app/") != std::string::npos);
}

TEST_F(LoginItemTest, FailsWhereItCannotBe) {
    const LoginItemClient none = makeLoginItem(folder / "autostart", {});
    EXPECT_EQ(none.status(), 3);
    EXPECT_FALSE(none.registerItem());
    folder.write("autostart", "a file in the folder's place");
    EXPECT_EQ(item("/X.app").status(), 0);
    EXPECT_EQ(item("/X.app").registerItem().error().code, ENOTDIR);
}

struct FileManagerTest : testing::Test {
    TemporaryFolder folder;
    FileManagerClient files = makeFileManager();
};

TEST_F(FileManagerTest, RemovesATreeAndNothingBehindItsLinks) {
    folder.write("outside/kept", "");
    folder.write("tree/a/b/c", "");
    fs::create_symlink(folder / "outside", folder / "tree/a/link");
    fs::create_symlink(folder / "outside", folder / "link");
    ASSERT_TRUE(files.removeItem(folder / "tree"));
    EXPECT_FALSE(files.fileExists(folder / "tree"));
    ASSERT_TRUE(files.removeItem(folder / "link"));
    EXPECT_TRUE(files.fileExists(folder / "outside/kept"));
}

TEST_F(FileManagerTest, TellsWhatIsMissingFromWhatRefuses) {
    const auto missing = files.removeItem(folder / "none");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().domain, PlatformError::Domain::cocoa);
    EXPECT_EQ(missing.error().code, FileManagerClient::kNoSuchFile);
    EXPECT_FALSE(files.removeItem(""));
    EXPECT_FALSE(files.fileExists(""));
    const auto refused = files.removeItem("/proc/self/status");
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().domain, PlatformError::Domain::posix);
    EXPECT_TRUE(files.fileExists(folder.write("file", "")));
    EXPECT_FALSE(files.fileExists(folder / "file/below"));
}

TEST_F(FileManagerTest, KnowsABundleByItsIdentifier) {
    makeSmallBundle(folder / "X.app", kIdentifier);
    EXPECT_EQ(files.identity(folder / "X.app"), kIdentifier);
    folder.write("X.app/Contents/Info.plist", "{ CFBundleIdentifier = (a); }");
    EXPECT_EQ(files.identity(folder / "X.app"), std::nullopt);
    EXPECT_EQ(files.identity(folder / "none.app"), std::nullopt);
    EXPECT_EQ(files.identity(""), std::nullopt);
}

struct RunningApplicationsTest : testing::Test {
    TemporaryFolder folder;

    RunningApplicationsTest() {
        makeSmallBundle(folder / "X.app", kIdentifier);
        makeSmallBundle(folder / "Y.app", kIdentifier + ".other");
    }
    static std::vector<std::int32_t> pids() {
        std::vector<std::int32_t> found;
        for (const RunningCopy& copy : makeRunningApplications().running(kIdentifier))
            found.push_back(copy.pid);
        return found;
    }
    // A child is this program's own image until it has begun.
    static bool finds(std::vector<std::int32_t> expected) {
        return eventually([&] { return pids() == expected; });
    }
};

TEST_F(RunningApplicationsTest, AreOneLoginsProcessesOutOfABundle) {
    unsetenv("DISPLAY");
    setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    const std::string own = "XDG_RUNTIME_DIR=" + folder.path().string();
    ChildProcess copy = startSmallBundle(folder / "X.app", {own});
    ASSERT_TRUE(finds({copy.pid()}));
    const ChildProcess other = startSmallBundle(folder / "Y.app", {own});
    const ChildProcess elsewhere = startSmallBundle(folder / "X.app", {"XDG_RUNTIME_DIR=/other"});
    ChildProcess second = startSmallBundle(folder / "X.app", {own});
    ASSERT_TRUE(finds({copy.pid(), second.pid()}));

    const RunningApplications applications = makeRunningApplications();
    applications.terminate(copy.pid());
    EXPECT_TRUE(finds({second.pid()})) << "an ended one that nobody has waited for is gone too";
    const auto status = copy.wait(20s);
    EXPECT_TRUE(status && WIFSIGNALED(*status) && WTERMSIG(*status) == SIGINT);
    applications.terminate(getpid());  // no application: nothing happens
    applications.terminate(1 << 30);
}

// A process is seen as what it is only some time after it was made.
TEST_F(RunningApplicationsTest, WereLaunchedWhenTheirFirstThreadBegan) {
    const auto applications = makeRunningApplications();
    const ChildProcess copy = startSmallBundle(folder / "X.app");
    ASSERT_TRUE(finds({copy.pid()}));
    const auto launchDate = [&] { return *applications.running(kIdentifier).front().launchDate; };
    std::atomic<bool> isOver = false;
    std::thread thread{[&] { isOver.wait(false); }};
    const WallTime begun = std::chrono::system_clock::now();
    const RunningCopy self = applications.current();
    EXPECT_EQ(self.pid, getpid());
    EXPECT_NEAR(secondsBetween(*self.launchDate, begun), 0, 0.1);
    poll(nullptr, 0, 20);  // two ticks of the system's
    EXPECT_EQ(applications.current(), self);
    EXPECT_LT(*self.launchDate, launchDate()) << "without a thread it is as if it came just now";
    isOver = true;
    isOver.notify_all();
    thread.join();
}

struct OpenApplicationTest : RunningApplicationsTest {
    OpenApplicationTest() {
        unsetenv("DISPLAY");
        setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    }
    ~OpenApplicationTest() override {
        for (const std::int32_t pid : pids()) kill(pid, SIGKILL);
    }
};

TEST_F(OpenApplicationTest, StartsWhatLivesOnItsOwn) {
    fs::create_directory_symlink(folder / "X.app", folder / "link");
    signal(SIGINT, SIG_IGN);  // as a script's background does
    ASSERT_TRUE(openApplication(folder / "link", {"1000"}));
    signal(SIGINT, SIG_DFL);
    const auto copies = pids();
    ASSERT_EQ(copies.size(), 1u) << "it has begun when the call returns";
    const auto process = fs::path{"/proc"} / std::to_string(copies[0]);
    EXPECT_EQ(waitpid(copies[0], nullptr, WNOHANG), -1) << "it is no child of ours";
    EXPECT_NE(getsid(copies[0]), getsid(0));
    for (const char* standard : {"fd/0", "fd/1", "fd/2"})
        EXPECT_EQ(fs::read_symlink(process / standard), "/dev/null");
    EXPECT_EQ(fs::read_symlink(process / "cwd"), "/");
    makeRunningApplications().terminate(copies[0]);
    EXPECT_TRUE(finds({})) << "the interrupt is not ignored";
}

TEST_F(OpenApplicationTest, SaysWhatIsWrong) {
    const auto fails = [&](const fs::path& bundle, const std::string& words) {
        const auto opened = openApplication(bundle, {});
        ASSERT_FALSE(opened);
        EXPECT_NE(opened.error().description.find(words), std::string::npos)
            << opened.error().description;
    };
    fails("/none.app", "/none.app: No such file or directory");
    fails(folder.path(), "not an application");
    folder.write("X.app/Contents/Linux/Sleeper", "no program");
    fails(folder / "X.app", "Exec format error");
    fs::remove(folder / "X.app/Contents/Linux/Sleeper");
    fails(folder / "X.app", "Contents/Linux/Sleeper: No such file or directory");
}

}  // namespace
}  // namespace quorvane
