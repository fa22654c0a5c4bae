// The commands over real files and a simulated add-on, which may disobey.
#include "host/addon/AddOnCommands.hpp"

#include <gtest/gtest.h>

#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "host/addon/DeliveredRemoval.hpp"
#include "tests/support/FakeNotices.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/MemoryPorts.hpp"
#include "tests/support/SmallBundle.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;
using Opened = std::pair<fs::path, std::vector<std::string>>;

const std::string kOwn = "example.quillon.Quorvane.LockScreenAddOn";
const std::string kChanged = "example.quillon.Quorvane.lockScreenConfigurationChanged";

class AddOnCommandsTest : public testing::Test {
protected:
    AddOnCommandsTest() { makeSmallBundle(source, kOwn, "1.1.0"); }

    AddOnCommands::Services services() {
        return {.applicationSupport = data,
                .bundleFiles = files,
                .fileManager = {.removeItem = [](const fs::path& path) -> Result<void> {
                                    fs::remove_all(path);
                                    return {};
                                },
                                .fileExists = [](const fs::path& path) { return fs::exists(path); },
                                .identity = {}},
                .openApplication = [this](const auto& bundle,
                                          const auto& words) { return open(bundle, words); },
                .control = {.applications = {.running = [this](const auto&) { return copies; },
                                             .current = {},
                                             .terminate = [this](auto) { quitIf(obeysSystem); }},
                            .notices = notices.distributed(),
                            .clock = clock.clock(),
                            .receivesNotices = !problems.bus},
                .connectPort = ports.connectPort(),
                .darwinNotices = darwin.darwin(),
                .sharedSuite = shared.table(),
                .addOnDefaults = own.table(),
                .problems = problems};
    }
    // The command's text when it has ended; a failure's text begins with "! ".
    template <typename Command, typename... Arguments>
    std::string run(Command command, const Arguments&... arguments) {
        AddOnCommands commands{services()};
        std::string said;
        std::invoke(command, commands, arguments..., [&](const AddOnCommands::Outcome& outcome) {
            said = outcome ? *outcome : "! " + outcome.error();
        });
        for (int step = 0; step < 2000 && said.empty(); ++step) clock.advance(50ms);
        return said;
    }
    std::string install() { return run(&AddOnCommands::install, source); }
    std::string update() { return run(&AddOnCommands::update, source); }
    std::string launch() { return run(&AddOnCommands::launch); }
    std::string quit() { return run(&AddOnCommands::quit); }
    std::string remove() { return run(&AddOnCommands::remove); }
    std::string turn(bool isOn) { return run(&AddOnCommands::setCardEnabled, isOn); }

    std::string installedVersion() const { return addOnVersionOf(place, files).value_or("none"); }
    // Installs and runs a copy of an older version.
    void putOld() {
        makeSmallBundle(place, kOwn, "1.0.0");
        copies = {{17, std::nullopt}};
    }
    // The number of names in the support folder, hidden ones included.
    auto entries() const { return std::distance(fs::directory_iterator{support}, {}); }

    TemporaryFolder folder;
    fs::path data = folder / "data";
    fs::path support = data / kOwn;
    fs::path place = support / "Quorvane Lock Screen.app";
    fs::path source = folder / "from/Quorvane Lock Screen.app";
    BundleFiles files = makeLiveBundleFiles();
    MemoryDefaults shared;
    SharedDefaults sharedDefaults{shared.table()};
    MemoryDefaults own;
    SessionProblems problems;
    ManualClock clock;
    FakeNotices darwin;
    FakeNotices notices;
    MemoryPorts ports;
    std::vector<RunningCopy> copies;
    std::vector<Opened> opened;
    std::string answers = "1.1.0";  // the version that a running copy reports
    bool obeysNotice = true;
    bool obeysSystem = true;
    bool staysUp = true;        // a copy that is started
    bool removesItself = true;  // one that is started to do so

private:
    Result<OpenCommandEnd> open(const fs::path& bundle, const std::vector<std::string>& words) {
        opened.push_back({bundle, words});
        if (!AddOnSignals::contains(words, AddOnSignals::kUninstallArgument)) {
            if (staysUp) copies.push_back({4711, std::nullopt});
        } else if (removesItself) {
            fs::remove_all(support);
        }
        return OpenCommandEnd{};
    }
    void quitIf(bool obeys) {
        if (obeys) copies.clear();
    }

    // A copy that runs listens.
    const Handle statusRequests =
        notices.distributed().observe(AddOnSignals::kStatusRequest, [this](const auto&) {
            if (!copies.empty())
                notices.deliver(AddOnSignals::kStatus,
                                AddOnSignals::Status{false, answers}.userInfo());
        });
    const Handle quits = notices.distributed().observe(
        AddOnSignals::kQuit, [this](const auto&) { quitIf(obeysNotice); });
};

TEST_F(AddOnCommandsTest, InstallPutsTheBundleInPlaceAndStartsIt) {
    shared.values = {{"lockScreenRemovalRequested", {true}}};
    own.values = {
        {"removalPending", {true}}, {"removalBundleIdentity", {kOwn}}, {"installID", {kOwn}}};
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(install(), "Installed version 1.1.0 as " + place.string() +
                                 ".\nThe card is on; turn it off with: quorvane-host disable\n"
                                 "The add-on is running.\n");
        EXPECT_EQ(installedVersion(), "1.1.0");
        EXPECT_EQ(entries(), 1);
        EXPECT_EQ(opened.back(), (Opened{place, {"--installed"}}));
        EXPECT_EQ(copies.size(), 1u) << "the first one has quit";
    }
    EXPECT_TRUE(sharedDefaults.lockScreenEnabled());
    // Interrupted and requested removals do not apply to the new bundle.
    EXPECT_FALSE(shared.values.contains("lockScreenRemovalRequested"));
    EXPECT_EQ(own.values.size(), 1u);
}

TEST_F(AddOnCommandsTest, InstallAndLaunchSayWhetherTheAddOnStarts) {
    EXPECT_EQ(launch(), "! the add-on is not installed (run: quorvane-host install)");
    staysUp = false;
    EXPECT_TRUE(
        install().ends_with("The add-on cannot run here: it ended at once (see its log). "
                            "Start it later with: quorvane-host launch"));
    EXPECT_EQ(installedVersion(), "1.1.0");
    staysUp = true;
    problems.screen = "no screen";
    EXPECT_EQ(launch(), "The add-on is running.\nNote: no screen.\n");
    EXPECT_EQ(opened.back(), (Opened{place, {}}));
    EXPECT_EQ(launch(), "The add-on is already running.\nNote: no screen.\n");

    problems = {.bus = "no bus"};  // no answer can arrive, so waits are short
    copies.clear();
    answers = "0.9.0";
    obeysNotice = false;
    const Instant begin = clock.clock().now();
    EXPECT_EQ(launch(), "The add-on was started.\nNote: no bus.\n");
    quit();
    EXPECT_LE(clock.clock().now() - begin, 3s);
    problems = {};
    EXPECT_TRUE(install().ends_with("The add-on was started, but has not answered yet.\n"));
}

TEST_F(AddOnCommandsTest, UpdateWantsSomethingOlder) {
    EXPECT_EQ(update(), "! the add-on is not installed (run: quorvane-host install)");
    putOld();
    EXPECT_EQ(update(), "Updated 1.0.0 to version 1.1.0.\nThe add-on is running.\n");
    EXPECT_EQ(installedVersion(), "1.1.0");
    EXPECT_FALSE(sharedDefaults.lockScreenEnabled()) << "unchanged";
    EXPECT_EQ(update(), "Version 1.1.0 is installed and is the newest.\n");
    EXPECT_EQ(opened.size(), 1u);
}

TEST_F(AddOnCommandsTest, AFailureLeavesTheOldOneInPlace) {
    putOld();
    const auto full = std::unexpected{PlatformError{.code = 28, .description = "no space left"}};
    files.putInPlace = [&](const auto&, const auto&) -> Result<void> { return full; };
    EXPECT_EQ(install(), "! nothing was installed: no space left");
    EXPECT_EQ(installedVersion(), "1.0.0");
    EXPECT_EQ(entries(), 1) << "no staged files remain";
    EXPECT_TRUE(opened.empty());
    EXPECT_FALSE(sharedDefaults.lockScreenEnabled());
}

TEST_F(AddOnCommandsTest, WhatIsNotOursIsLeftAlone) {
    const auto refuses = [&](const fs::path& path, const std::string& reason) {
        for (const auto& said : {install(), update(), launch(), remove()})
            EXPECT_EQ(said, "! " + path.string() + " is " + reason + "; left unchanged");
        EXPECT_TRUE(opened.empty());
        EXPECT_GT(fs::remove_all(support), 0u);
    };
    makeSmallBundle(place, "another.Bundle");
    refuses(place, "not the add-on");
    fs::create_directories(place / "Photos");
    refuses(place, "not the add-on");
    folder.write("data/" + kOwn, "a file");
    refuses(support, "not a folder");
    fs::create_directory_symlink(folder.path(), support);
    refuses(support, "a symbolic link");
    fs::create_directories(support);
    fs::create_directory_symlink(source, place);
    refuses(place, "a symbolic link");

    fs::create_symlink("/etc/passwd", source / "Contents/link");
    EXPECT_TRUE(install().ends_with("/Contents/link: Too many levels of symbolic links"));
    EXPECT_FALSE(fs::exists(support)) << "unchanged";
    makeSmallBundle(source, "another.Bundle");
    EXPECT_EQ(install(), "! " + source.string() + " is not the add-on");
}

TEST_F(AddOnCommandsTest, QuitsByNoticeElseBySignal) {
    EXPECT_EQ(quit(), "! the add-on is not running");
    obeysNotice = false;
    putOld();
    EXPECT_EQ(quit(), "The add-on has quit. It starts again at the next login.\n");
    putOld();
    obeysSystem = false;
    EXPECT_EQ(quit(), "! the add-on did not quit (try again, or log out)");
}

TEST_F(AddOnCommandsTest, RemoveIsAskedForAndFollowedUp) {
    EXPECT_EQ(remove(), "The add-on is not installed.\n");
    putOld();
    own.values = {{"installID", {std::string{"ID"}}}};
    shared.values = {{"lockScreenEnabled", {true}}};
    removesItself = false;
    int hellos = 0;  // requests for a hello
    const Handle observation = darwin.darwin().observe(kChanged, [&] { ++hellos; });
    EXPECT_TRUE(remove().starts_with("! the add-on has not removed itself"));
    const auto pending = sharedDefaults.lockScreenPendingRemoval();
    ASSERT_TRUE(pending) << "delivered with the answer to its next hello";
    EXPECT_EQ(pending->targetInstallID, "ID");
    EXPECT_EQ(hellos, 1);
    EXPECT_EQ(opened.back(), (Opened{place, {"--uninstall"}}));
    EXPECT_TRUE(fs::exists(place));

    removesItself = true;
    EXPECT_EQ(remove(), "Removed the add-on, its login item and its settings.\n");
    EXPECT_FALSE(sharedDefaults.lockScreenPendingRemoval());
    EXPECT_FALSE(sharedDefaults.lockScreenEnabled());
    EXPECT_TRUE(own.values.empty());

    // An incomplete bundle cannot remove itself.
    own.values = {
        {"removalPending", {true}}, {"removalBundleIdentity", {kOwn}}, {"installID", {true}}};
    fs::create_directories(place / "Contents/Linux");
    EXPECT_EQ(remove(), "Removed the rest of an incomplete installation.\n");
    EXPECT_FALSE(fs::exists(support));
    EXPECT_TRUE(own.values.empty());
    fs::create_directories(place / "Contents/Linux");
    EXPECT_TRUE(update().starts_with("Updated an incomplete installation to version 1.1.0.\n"));
}

TEST_F(AddOnCommandsTest, ADeliveredRemovalIsCarriedOutUnlessItsCommandHasDoneSo) {
    obeysNotice = false;  // has closed its windows and waits
    for (const bool isPending : {false, true}) {
        putOld();
        DeliveredRemoval removal{services(), {}};
        ASSERT_TRUE(sharedDefaults.setLockScreenPendingRemoval(LockScreenPendingRemoval{}));
        removal.delivered();
        clock.advance(DeliveredRemoval::kPatience - 1s);
        removal.delivered();
        EXPECT_FALSE(copies.empty());
        if (!isPending) shared.values.clear();
        for (int step = 0; step < 200; ++step) clock.advance(50ms);
        EXPECT_EQ(copies.empty(), isPending);
        EXPECT_EQ(fs::exists(support), !isPending);
        EXPECT_EQ(opened.size(), isPending ? 1u : 0u);
    }
    EXPECT_FALSE(sharedDefaults.lockScreenPendingRemoval());
}

TEST_F(AddOnCommandsTest, TurningTheCardOnOrOffIsStoredThenAnnounced) {
    int posts = 0;
    const Handle observation = darwin.darwin().observe(kChanged, [&] {
        ++posts;
        EXPECT_GT(shared.synchronizations, 0) << "a receiver must find the new value";
    });
    EXPECT_EQ(turn(true),
              "The card is on.\n"
              "No host is running: this takes effect with the next quorvane-host run.\n");
    const Handle host = ports.serve(std::string{kMessagePortBaseName}, {});
    EXPECT_EQ(turn(true), "The card is already on.\n");
    EXPECT_EQ(turn(false), "The card is off.\n");
    EXPECT_FALSE(sharedDefaults.lockScreenEnabled());
    shared.refuses = true;
    EXPECT_EQ(turn(true), "! the shared settings cannot be written: full");
    EXPECT_EQ(posts, 3);
}

TEST_F(AddOnCommandsTest, TheBundleThatCameWithTheProgramIsFound) {
    EXPECT_EQ(bundleToInstall(folder / "usr/bin/quorvane-host", files), std::nullopt);
    for (const auto& bundle : {folder / "usr/lib/quorvane/Quorvane Lock Screen.app",
                               folder / "usr/Quorvane Lock Screen.app"}) {
        makeSmallBundle(bundle, kOwn);
        EXPECT_EQ(bundleToInstall(folder / "usr/bin/quorvane-host", files), bundle);
    }
}

}  // namespace
}  // namespace quorvane
