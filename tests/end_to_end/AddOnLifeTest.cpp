// The add-on's installation, launch, update and removal, with real processes and files. A removal
// is killed after each of its steps and finished by the next launch.

#include "AddOnKit/life/SelfRemoval.hpp"
#include "platform/LivePlatform.hpp"
#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/processes/LoginItemLinux.hpp"
#include "tests/end_to_end/LockSession.hpp"
#include "tests/support/ForkedChild.hpp"

namespace quorvane {
namespace {

namespace fs = std::filesystem;

// A session in which the host installs and starts the add-on. The add-on is not the test's child,
// so the test reads its log file.
class InstalledAddOn : public testing::Test {
public:
    static constexpr char kIdentifier[] = "example.quillon.Quorvane.LockScreenAddOn";

    // Kills all copies.
    ~InstalledAddOn() override {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator{"/proc", error}) {
            const auto program = fs::read_symlink(entry.path() / "exe", error);
            if (!error && program.string().starts_with(folder().path().string()))
                kill(std::atoi(entry.path().filename().c_str()), SIGKILL);
        }
    }

    using Run = LoggedProcess::Run;
    // Runs the host with a command to its end.
    Run host(std::vector<std::string> words) {
        words.insert(words.begin(), HOST_PROGRAM);
        return run(words);
    }
    Run run(const std::vector<std::string>& words) {
        auto environment = session.environment();
        environment.push_back("QUORVANE_LOG=" + (folder() / "log").string());
        return LoggedProcess::run(words, environment);
    }
    // Waits for the text in the log, after the texts that earlier calls have found.
    bool says(const std::string& text) {
        return eventually([&] {
            const auto place = folder().read("log").find(text, passed_);
            if (place == std::string::npos) return false;
            passed_ = place + text.size();
            return true;
        });
    }
    // Copies the built bundle and changes its version.
    fs::path copyBundle(const std::string& place, const std::string& version) {
        const auto bundle = folder() / place;
        fs::create_directories(bundle.parent_path());
        fs::copy(ADDON_BUNDLE, bundle, fs::copy_options::recursive);
        const std::string file = place + "/Contents/Info.plist";
        std::string list = folder().read(file);
        const std::string key = "<key>CFBundleShortVersionString</key>";
        const auto begin = list.find("<string>", list.find(key)) + 8;
        list.replace(begin, list.find('<', begin) - begin, version);
        folder().write(file, list);
        return bundle;
    }
    static std::string programIn(const fs::path& bundle) {
        return (bundle / "Contents/Linux/Quorvane Lock Screen").string();
    }
    void expectNothingIsLeft() const {
        EXPECT_FALSE(fs::exists(support()));
        EXPECT_FALSE(fs::exists(loginItem()));
        EXPECT_FALSE(fs::exists(folder() / preferences()));
    }
    const TemporaryFolder& folder() const { return session.folder(); }
    fs::path support() const { return folder() / "data" / kIdentifier; }
    fs::path place() const { return support() / "Quorvane Lock Screen.app"; }
    fs::path loginItem() const {
        return folder() / "config/autostart" / (std::string{kIdentifier} + ".desktop");
    }
    std::string preferences() const { return std::string{"config/"} + kIdentifier + ".plist"; }

    LockSession session;

private:
    std::size_t passed_ = 0;
};

using EndToEndLife = InstalledAddOn;
using EndToEndRemoval = InstalledAddOn;

TEST_F(EndToEndLife, InstallStatusQuitAndRemoveWithTheHostAlone) {
    const auto hostSays = [this](const char* command, const std::string& words) {
        const std::string text = host({command}).text;
        EXPECT_NE(text.find(words), std::string::npos) << text;
    };
    hostSays("install", "no host is running");
    EXPECT_TRUE(fs::exists(loginItem()));
    hostSays("status", "Add-on:  running, version 1.0.0, not connected");
    LoggedProcess serving = session.startHost();
    ASSERT_TRUE(says("Configuration: enabled true, removal false"));
    hostSays("status", "Add-on:  running, version 1.0.0, connected");
    hostSays("quit", "The add-on has quit. It starts again at the next login.\n");
    EXPECT_EQ(host({"quit"}).status, 1);
    EXPECT_EQ(host({"launch"}).status, 0);

    // Removal while the add-on runs, is connected and shows the card.
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(says("entrance: window"));
    hostSays("remove", "Removed the add-on, its login item and its settings.\n");
    EXPECT_TRUE(says("windows: closing 1"));
    EXPECT_TRUE(says("removal: finished; quitting"));
    expectNothingIsLeft();
}

TEST_F(EndToEndLife, AnUpdateWhileTheCardShowsBringsItBack) {
    LoggedProcess serving = session.startHost();
    ASSERT_EQ(host({"install"}).status, 0);
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(says("entrance: window"));
    const auto updated = host({"update", "--from", copyBundle("new/X.app", "1.10.0")});
    EXPECT_EQ(updated.text, "Updated 1.0.0 to version 1.10.0.\nThe add-on is running.\n");
    // Both copies write one log, so these lines appear in this order.
    EXPECT_TRUE(says("installer: quitting"));
    EXPECT_TRUE(says("windows: closing 1"));
    EXPECT_TRUE(says("launch: 1.10.0"));
    EXPECT_TRUE(says("entrance: window")) << folder().read("log");
    EXPECT_EQ(folder().read("log").find("launch: an older copy"), std::string::npos);
}

TEST_F(EndToEndLife, InstallsWithAwkwardFoldersAndFailsPlainly) {
    EXPECT_EQ(run({"env", "XDG_DATA_HOME=relative", HOST_PROGRAM, "install"}).status, 0);
    EXPECT_TRUE(fs::exists(folder() / "home/.local/share" / kIdentifier));
    EXPECT_EQ(run({"env", "-u", "HOME", HOST_PROGRAM, "install"}).status, 0);
    auto failed = run({"env", "XDG_DATA_HOME=/proc/nowhere", HOST_PROGRAM, "install"});
    EXPECT_EQ(failed.status, 1);
    EXPECT_TRUE(failed.text.starts_with("quorvane-host: nothing was installed: ")) << failed.text;

    // Writing a file fails, or the command is killed while copying. The old bundle stays.
    const auto bundle = copyBundle("new/X.app", "2.0.0");
    for (const bool isKilled : {false, true}) {
        failed = run(
            {"sh", "-c",
             isKilled ? "ulimit -f 100; exec \"$@\"" : "trap '' XFSZ; ulimit -f 100; exec \"$@\"",
             "sh", HOST_PROGRAM, "update", "--from", bundle});
        EXPECT_EQ(failed.status, isKilled ? -1 : 1);
        EXPECT_EQ(failed.text.find("File too large") == std::string::npos, isKilled);
    }
    EXPECT_NE(host({"status"}).text.find("Install: version 1.0.0"), std::string::npos);
    EXPECT_EQ(host({"install"}).status, 0);
    EXPECT_EQ(std::distance(fs::directory_iterator{support()}, {}), 1) << "the copy is discarded";
}

// Kills the process after its n-th call of a wrapped operation.
struct Killer {
    int lastCall = 0;
    int calls = 0;

    template <typename Result, typename... Parameters>
    void after(std::function<Result(Parameters...)>& operation) {
        operation = [this, whole = std::move(operation)](Parameters... parameters) -> Result {
            struct AtEnd {
                Killer& killer;
                ~AtEnd() {
                    if (++killer.calls == killer.lastCall) raise(SIGKILL);
                }
            } atEnd{*this};
            return whole(parameters...);
        };
    }
};

// Removes the installed add-on over the live tables and is killed after so many calls. Returns
// whether the removal has finished.
bool removeKilledAfter(int calls, const InstalledAddOn& life) {
    ForkedChild child{[&](const ForkedChild::Say&) {
        for (const std::string& entry : life.session.environment()) putenv(strdup(entry.c_str()));
        auto services = makeLiveServices(0, nullptr, InstalledAddOn::kIdentifier);
        ProcessInfo process = services->process;
        process.bundle = life.place();
        process.bundleProperties = propertiesOfBundle(life.place());
        Killer killer{calls};
        SelfRemoval removal{.defaults = services->standardDefaults,
                            .loginItem = makeLoginItem(life.loginItem().parent_path(), process),
                            .fileManager = services->installation.fileManager,
                            .bundle = life.place(),
                            .supportDirectory = life.support(),
                            .terminate = [] {},
                            .log = {}};
        killer.after(removal.defaults.set);
        killer.after(removal.defaults.removeDomain);
        killer.after(removal.defaults.synchronize);
        killer.after(removal.loginItem.status);
        killer.after(removal.loginItem.unregisterItem);
        killer.after(removal.fileManager.removeItem);
        killer.after(removal.fileManager.fileExists);
        removal.perform();
        return 0;
    }};
    const int status = child.wait();
    return WIFEXITED(status);
}

TEST_F(EndToEndRemoval, KilledAfterAnyStepItIsFinishedByTheNextLaunch) {
    folder().write("data/neighbour/file", "kept");
    folder().write("config/neighbour.plist", "kept");
    folder().write("config/autostart/neighbour.desktop", "kept");
    bool hasEnded = false;
    int finishedByLaunch = 0;
    int finishedByHost = 0;
    for (int calls = 1; !hasEnded; ++calls) {
        ASSERT_EQ(host({"install"}).status, 0);
        ASSERT_EQ(host({"quit"}).status, 0);
        hasEnded = removeKilledAfter(calls, *this);
        SCOPED_TRACE(calls);
        if (fs::exists(place())) {
            // Only a launch that runs needs a display.
            LoggedProcess launch =
                session.start({"env", calls == 1 ? "-uNONE" : "-uDISPLAY", programIn(place())});
            if (calls == 1) {  // not marked yet: it starts as usual
                EXPECT_TRUE(launch.says("lock monitor started"));
                launch.process().end(SIGINT);
                EXPECT_EQ(host({"remove"}).status, 0);
            } else {
                EXPECT_TRUE(launch.says("launch: a removal is pending; finishing it"));
                EXPECT_TRUE(launch.says("removal: finished; quitting"));
                launch.process().wait(std::chrono::seconds{20});
                ++finishedByLaunch;
            }
        } else if (!hasEnded) {  // no bundle is left to launch; settings may be left
            EXPECT_EQ(host({"remove"}).status, 0);
            ++finishedByHost;
        }
        expectNothingIsLeft();
    }
    EXPECT_EQ(finishedByLaunch, 4);
    EXPECT_EQ(finishedByHost, 4);
    for (const char* file :
         {"data/neighbour/file", "config/neighbour.plist", "config/autostart/neighbour.desktop"})
        EXPECT_EQ(folder().read(file), "kept") << file;
}

TEST_F(EndToEndRemoval, AKilledRemovalDoesNotRemoveTheNextInstall) {
    ASSERT_EQ(host({"install"}).status, 0);
    ASSERT_EQ(host({"quit"}).status, 0);
    ASSERT_FALSE(removeKilledAfter(6, *this));
    ASSERT_FALSE(fs::exists(place()));
    ASSERT_NE(folder().read(preferences()).find("removalPending"), std::string::npos);
    ASSERT_EQ(host({"install"}).status, 0);
    ASSERT_EQ(host({"quit"}).status, 0);
    ASSERT_EQ(host({"launch"}).status, 0) << "as at the next login";
    EXPECT_TRUE(fs::exists(place()));
}

}  // namespace
}  // namespace quorvane
