// The commands over real files and a simulated add-on, which obeys or does not.
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
using Outcome = AddOnCommands::Outcome;
using Opened = std::pair<fs::path, std::vector<std::string>>;

const std::string kOwn = "example.quillon.Quorvane.LockScreenAddOn";

class AddOnCommandsTest : public testing::Test {
protected:
    AddOnCommandsTest() {
        makeSmallBundle(source, kOwn, "1.1.0");
        files = makeLiveBundleFiles();
    }

    AddOnCommands::Services services() {
        return {
            .applicationSupport = data,
            .bundleFiles = files,
            .fileManager = {.removeItem = [this](const fs::path& path) -> Result<void> {
                                ++removals;
                                fs::remove_all(path);
                                return {};
                            },
                            .fileExists = [](const fs::path& path) { return fs::exists(path); },
                            .identity = {}},
            .openApplication = [this](const fs::path& bundle,
                                      const auto& arguments) { return open(bundle, arguments); },
            .control = {.applications = {.running = [this](const auto&) { return copies; },
                                         .current = {},
                                         .terminate = [this](std::int32_t) { systemAsks(); }},
                        .notices = notices.distributed(),
                        .clock = clock.clock(),
                        .canHearNotices = !problems.bus},
            .connectPort = ports.connectPort(),
            .darwinNotices = darwin.darwin(),
            .sharedSuite = shared.table(),
            .addOnDefaults = own.table(),
            .problems = problems};
    }
    // What the command has said when it has ended.
    template <typename Command>
    Outcome run(Command command) {
        AddOnCommands commands{services()};
        std::optional<Outcome> outcome;
        std::invoke(command, commands, [&](Outcome ended) { outcome = std::move(ended); });
        for (int step = 0; step < 2000 && !outcome; ++step) {
            clock.advance(50ms);
            if (std::exchange(statusIsAsked, false) && !copies.empty())
                notices.deliver(AddOnSignals::kStatus,
                                AddOnSignals::Status{false, answers}.userInfo());
        }
        return outcome.value_or(std::unexpected{"it never ends"});
    }
    Outcome install() {
        return run([&](AddOnCommands& commands, auto done) { commands.install(source, done); });
    }
    Outcome update() {
        return run([&](AddOnCommands& commands, auto done) { commands.update(source, done); });
    }
    Outcome launch() { return run(&AddOnCommands::launch); }
    Outcome quit() { return run(&AddOnCommands::quit); }
    Outcome remove() { return run(&AddOnCommands::remove); }
    std::string installedVersion() const { return addOnVersionOf(place, files).value_or("none"); }
    void putOld() { makeSmallBundle(place, kOwn, "1.0.0"); }
    // Names in the support folder, hidden ones too.
    std::size_t entries() const {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator{support}, fs::directory_iterator{}));
    }

    TemporaryFolder folder;
    fs::path data = folder / "data";
    fs::path support = data / kOwn;
    fs::path place = support / "Quorvane Lock Screen.app";
    fs::path source = folder / "from/Quorvane Lock Screen.app";
    BundleFiles files;
    MemoryDefaults shared;
    MemoryDefaults own;
    SessionProblems problems;
    ManualClock clock;
    FakeNotices darwin;
    FakeNotices notices;
    MemoryPorts ports;
    std::vector<RunningCopy> copies;
    std::vector<Opened> opened;
    std::string answers = "1.1.0";  // the version that a running copy says it is
    bool obeysNotice = true;
    bool obeysSystem = true;
    bool staysUp = true;        // a copy that is started
    bool removesItself = true;  // one that is started to do so
    int removals = 0;

private:
    void systemAsks() {
        if (obeysSystem) copies.clear();
    }
    Result<OpenCommandEnd> open(const fs::path& bundle, const std::vector<std::string>& arguments) {
        opened.push_back({bundle, arguments});
        if (AddOnSignals::contains(arguments, AddOnSignals::kUninstallArgument)) {
            if (removesItself) fs::remove_all(support);
        } else if (staysUp) {
            copies.push_back({4711, std::nullopt});
        }
        return OpenCommandEnd{};
    }

    bool statusIsAsked = false;
    // A copy that runs listens.
    const Handle statusRequests = notices.distributed().observe(
        AddOnSignals::kStatusRequest, [this](const auto&) { statusIsAsked = true; });
    const Handle quits = notices.distributed().observe(AddOnSignals::kQuit, [this](const auto&) {
        if (obeysNotice) copies.clear();
    });
};

TEST_F(AddOnCommandsTest, InstallPutsTheBundleInPlaceAndStartsIt) {
    shared.values = {{"lockScreenRemovalRequested", {true}}};
    own.values = {
        {"removalPending", {true}}, {"removalBundleIdentity", {kOwn}}, {"installID", {kOwn}}};
    const Outcome outcome = install();
    ASSERT_TRUE(outcome) << outcome.error();
    EXPECT_EQ(*outcome, "Installed version 1.1.0 as " + place.string() +
                            ".\nThe card is on; turn it off with: quorvane-host disable\n"
                            "The add-on is running.\n");
    EXPECT_EQ(installedVersion(), "1.1.0");
    EXPECT_EQ(fs::status(place / "Contents/Linux/Sleeper").permissions() & fs::perms::owner_exec,
              fs::perms::owner_exec);
    EXPECT_EQ(entries(), 1u);
    EXPECT_EQ(opened, (std::vector<Opened>{{place, {"--installed"}}}));
    EXPECT_TRUE(SharedDefaults{shared.table()}.lockScreenEnabled());
    // Interrupted and requested removals do not apply to the new bundle.
    EXPECT_FALSE(shared.values.contains("lockScreenRemovalRequested"));
    EXPECT_EQ(own.values.size(), 1u);
    EXPECT_TRUE(install()) << "again";
    EXPECT_EQ(entries(), 1u);
    EXPECT_EQ(copies.size(), 1u) << "the first one has quit";
}

TEST_F(AddOnCommandsTest, InstallSaysWhenTheAddOnDoesNotStart) {
    staysUp = false;
    Outcome outcome = install();
    ASSERT_FALSE(outcome);
    EXPECT_NE(outcome.error().find("ended at once"), std::string::npos);
    EXPECT_EQ(installedVersion(), "1.1.0");
    problems.screen = "no screen";
    EXPECT_TRUE(launch().error().starts_with("the add-on cannot run here: no screen."));
    staysUp = true;
    EXPECT_TRUE(launch()->ends_with("The add-on is running.\nNote: no screen.\n"));
    EXPECT_TRUE(launch()->ends_with("The add-on is already running.\nNote: no screen.\n"));

    problems = {.bus = "no bus"};  // no answer can arrive, so waits are short
    copies.clear();
    answers = "";
    const Instant begin = clock.clock().now();
    EXPECT_TRUE(launch()->ends_with("The add-on was started.\nNote: no bus.\n"));
    obeysNotice = false;
    EXPECT_TRUE(quit());
    EXPECT_LE(clock.clock().now() - begin, 3s);
    problems = {};
    answers = "0.9.0";  // an old copy that did not quit
    EXPECT_TRUE(install()->ends_with("has not answered yet.\n"));
}

TEST_F(AddOnCommandsTest, UpdateWantsSomethingOlder) {
    EXPECT_EQ(update().error(), "the add-on is not installed (run: quorvane-host install)");
    putOld();
    copies = {{17, std::nullopt}};
    EXPECT_EQ(*update(), "Updated 1.0.0 to version 1.1.0.\nThe add-on is running.\n");
    EXPECT_EQ(installedVersion(), "1.1.0");
    EXPECT_FALSE(SharedDefaults{shared.table()}.lockScreenEnabled()) << "unchanged";
    opened.clear();
    EXPECT_EQ(*update(), "Version 1.1.0 is installed and is the newest.\n");
    makeSmallBundle(source, kOwn, "1.0.9");
    EXPECT_EQ(*update(), "Version 1.1.0 is installed and is the newest.\n");
    EXPECT_TRUE(opened.empty());
}

TEST_F(AddOnCommandsTest, WhateverFailsLeavesTheOldOneInPlace) {
    putOld();
    // The n-th file operation fails.
    for (int failing = 1; failing <= 2; ++failing) {
        int calls = 0;
        const auto fails = [&calls, failing]() -> std::optional<std::unexpected<PlatformError>> {
            if (++calls != failing) return std::nullopt;
            return std::unexpected{PlatformError{.code = 28, .description = "no space left"}};
        };
        const BundleFiles live = makeLiveBundleFiles();
        files.stage = [&](const fs::path& bundle, const fs::path& where) -> Result<fs::path> {
            if (const auto failure = fails()) return *failure;
            return live.stage(bundle, where);
        };
        files.putInPlace = [&](const fs::path& staged, const fs::path& where) -> Result<void> {
            if (const auto failure = fails()) return *failure;
            return live.putInPlace(staged, where);
        };
        EXPECT_EQ(install().error(), "nothing was installed: no space left");
        EXPECT_EQ(installedVersion(), "1.0.0");
        EXPECT_EQ(entries(), 1u) << "no staged files remain";
    }
    EXPECT_TRUE(opened.empty());
    EXPECT_FALSE(SharedDefaults{shared.table()}.lockScreenEnabled());
}

TEST_F(AddOnCommandsTest, WhatIsNotOursIsLeftAlone) {
    const auto refuses = [&](const std::string& words) {
        for (const auto& outcome : {install(), update(), launch(), remove()}) {
            ASSERT_FALSE(outcome);
            EXPECT_EQ(outcome.error(), words + "; left unchanged");
        }
        EXPECT_TRUE(opened.empty());
        EXPECT_EQ(removals, 0);
        fs::remove_all(support);
    };
    makeSmallBundle(place, "another.Bundle");
    refuses(place.string() + " is not the add-on");
    fs::create_directories(place / "Photos");
    refuses(place.string() + " is not the add-on");
    folder.write("data/" + kOwn, "a file");
    refuses(support.string() + " is not a folder");
    fs::create_directory_symlink(folder.path(), support);
    refuses(support.string() + " is a symbolic link");
    fs::create_directories(support);
    fs::create_directory_symlink(source, place);
    refuses(place.string() + " is a symbolic link");

    fs::create_symlink("/etc/passwd", source / "Contents/link");
    EXPECT_EQ(install().error(), "nothing was installed: " + (source / "Contents/link").string() +
                                     ": Too many levels of symbolic links");
    EXPECT_FALSE(fs::exists(support)) << "unchanged";
    makeSmallBundle(folder / "Y.app", "another.Bundle");
    source = folder / "Y.app";
    EXPECT_EQ(install().error(), source.string() + " is not the add-on");
}

TEST_F(AddOnCommandsTest, LaunchesAndQuits) {
    EXPECT_FALSE(launch());
    EXPECT_EQ(quit().error(), "the add-on is not running");
    putOld();
    answers = "1.0.0";
    EXPECT_EQ(*launch(), "The add-on is running.\n");
    EXPECT_EQ(opened.back(), (Opened{place, {}}));
    EXPECT_EQ(*launch(), "The add-on is already running.\n");
    EXPECT_EQ(opened.size(), 1u);
    obeysNotice = false;
    EXPECT_TRUE(quit()) << "by signal";
    copies = {{17, std::nullopt}};
    obeysSystem = false;
    EXPECT_EQ(quit().error(), "the add-on did not quit (try again, or log out)");
}

TEST_F(AddOnCommandsTest, RemoveIsAskedForAndFollowedUp) {
    EXPECT_EQ(*remove(), "The add-on is not installed.\n");
    putOld();
    copies = {{17, std::nullopt}};
    own.values = {{"installID", {std::string{"ID"}}}};
    shared.values = {{"lockScreenEnabled", {true}}};
    removesItself = false;
    int hellos = 0;  // requests for a hello
    const Handle observation = darwin.darwin().observe(
        "example.quillon.Quorvane.lockScreenConfigurationChanged", [&] { ++hellos; });
    Outcome outcome = remove();
    ASSERT_FALSE(outcome);
    EXPECT_TRUE(outcome.error().starts_with("the add-on has not removed itself"));
    const auto pending = SharedDefaults{shared.table()}.lockScreenPendingRemoval();
    ASSERT_TRUE(pending) << "delivered with the answer to its next hello";
    EXPECT_EQ(pending->targetInstallID, "ID");
    EXPECT_EQ(hellos, 1);
    EXPECT_EQ(opened.back(), (Opened{place, {"--uninstall"}}));
    EXPECT_EQ(removals, 0);

    removesItself = true;
    EXPECT_EQ(*remove(), "Removed the add-on, its login item and its settings.\n");
    EXPECT_FALSE(SharedDefaults{shared.table()}.lockScreenPendingRemoval());
    EXPECT_FALSE(SharedDefaults{shared.table()}.lockScreenEnabled());
    EXPECT_TRUE(own.values.empty());
}

TEST_F(AddOnCommandsTest, ADeliveredRemovalIsCarriedOutUnlessItsCommandHasDoneSo) {
    for (const bool isPending : {false, true}) {
        putOld();
        copies = {{17, std::nullopt}};  // has closed its windows and waits
        obeysNotice = false;
        shared.values.clear();
        DeliveredRemoval removal{services(), {}};
        static_cast<void>(
            SharedDefaults{shared.table()}.setLockScreenPendingRemoval(LockScreenPendingRemoval{}));
        removal.delivered();
        removal.delivered();
        clock.advance(DeliveredRemoval::kPatience - 1s);
        EXPECT_FALSE(copies.empty());
        if (!isPending) shared.values.clear();
        for (int step = 0; step < 200; ++step) clock.advance(50ms);
        EXPECT_EQ(copies.empty(), isPending);
        EXPECT_EQ(fs::exists(support), !isPending);
        EXPECT_EQ(opened.size(), isPending ? 1u : 0u);
    }
    EXPECT_FALSE(SharedDefaults{shared.table()}.lockScreenPendingRemoval());
}

TEST_F(AddOnCommandsTest, WhatIsLeftOfABundleIsMendedOrRemoved) {
    fs::create_directories(place / "Contents/Linux");
    own.values = {{"removalPending", {true}}, {"removalBundleIdentity", {kOwn}}};
    EXPECT_FALSE(launch());
    EXPECT_EQ(*remove(), "Removed the rest of an incomplete installation.\n");
    EXPECT_FALSE(fs::exists(support));
    EXPECT_TRUE(own.values.empty());
    fs::create_directories(place / "Contents/Linux");
    EXPECT_TRUE(install());
    EXPECT_EQ(installedVersion(), "1.1.0");
}

TEST_F(AddOnCommandsTest, TurningTheCardOnOrOffIsStoredThenAnnounced) {
    int posts = 0;
    const Handle observation =
        darwin.darwin().observe("example.quillon.Quorvane.lockScreenConfigurationChanged", [&] {
            ++posts;
            EXPECT_GT(shared.synchronizations, 0) << "a receiver must find the new value";
        });
    const auto turn = [&](bool isOn) {
        return run([&](AddOnCommands& it, auto done) { it.setCardEnabled(isOn, done); });
    };
    EXPECT_EQ(turn(true),
              "The card is on.\n"
              "No host is running: this takes effect with the next quorvane-host run.\n");
    const Handle host = ports.serve(std::string{kMessagePortBaseName}, {});
    EXPECT_EQ(turn(true), "The card is already on.\n");
    EXPECT_EQ(turn(false), "The card is off.\n");
    EXPECT_FALSE(SharedDefaults{shared.table()}.lockScreenEnabled());
    EXPECT_EQ(posts, 3);
    shared.refuses = true;
    EXPECT_EQ(turn(true).error(), "the shared settings cannot be written: full");
    EXPECT_EQ(posts, 3);
}

TEST_F(AddOnCommandsTest, TheBundleThatCameWithTheProgramIsFound) {
    EXPECT_EQ(bundleToInstall(folder / "from/host/quorvane-host", files), source);
    EXPECT_EQ(bundleToInstall(folder / "usr/bin/quorvane-host", files), std::nullopt);
    const auto packaged = folder / "usr/lib/quorvane/Quorvane Lock Screen.app";
    makeSmallBundle(packaged, kOwn);
    EXPECT_EQ(bundleToInstall(folder / "usr/bin/quorvane-host", files), packaged);
}

}  // namespace
}  // namespace quorvane
