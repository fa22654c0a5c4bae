#include "Quorvane_Lock_Screen/AddOnApp.hpp"

#include <gtest/gtest.h>

#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

const std::string kOwn = "example.quillon.Quorvane.LockScreenAddOn";
const std::filesystem::path kBundle = "/support/" + kOwn + "/Quorvane Lock Screen.app";
constexpr RunningCopy kMe = FakeInstallation::kMe;

struct AddOnAppTest : testing::Test {
    AddOnAppTest() {
        platform.installation.bundles = {{kBundle, kOwn}};
        platform.live.services.process.bundle = kBundle;
        platform.live.services.application.terminate = [this] {
            ++platform.terminations;
            app->applicationWillTerminate();
        };
    }
    void launch(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), "add-on");
        platform.live.services.process.arguments = std::move(arguments);
        app.emplace(platform.live);
        app->applicationDidFinishLaunching();
        platform.clock.advance(Duration{});
        platform.settle();
    }
    // The lines before the coordinator's first one.
    Lines launchLines() {
        Lines lines;
        for (const auto& line : platform.log.lines()) {
            if (line.text == "launch: 1.2.3, pid 4711") break;
            lines.push_back(line.category + " " + std::to_string(std::to_underlying(line.level)) +
                            " " + line.text);
        }
        return lines;
    }
    bool hasStarted() const { return platform.log.contains("launch: 1.2.3, pid 4711"); }
    void runBeside(std::vector<RunningCopy> others) {
        others.push_back(kMe);
        platform.installation.copies = std::move(others);
        launch();
    }

    FakePlatform platform;
    std::optional<AddOnApp> app;
};

TEST_F(AddOnAppTest, RegistersItsLoginItemUnlessTheUserHasSwitchedItOff) {
    const struct {
        std::int64_t before, after;
        Lines lines;
    } rows[] = {{1, 1, {}},
                {0, 1, {"app 1 login item: registered (now 1)"}},
                {3, 1, {"app 1 login item: registered (now 1)"}},
                {2, 2, {"app 1 login item: awaiting approval in Login Items; leaving it alone"}},
                {7, 7, {"app 3 login item: unknown status 7; leaving it alone"}}};
    for (const auto& row : rows) {
        platform.installation.loginItem = row.before;
        platform.log.take();
        launch();
        EXPECT_EQ(platform.installation.loginItem, row.after);
        EXPECT_EQ(launchLines(), row.lines);
        EXPECT_TRUE(hasStarted());
    }
    platform.log.take();
    platform.installation.loginItem = 0;
    platform.installation.loginItemRefuses = true;
    launch();
    EXPECT_EQ(launchLines(), (Lines{"app 3 login item: register() failed: no agent (error 1)"}));
    EXPECT_TRUE(hasStarted());
    EXPECT_EQ(platform.terminations, 0);
}

TEST_F(AddOnAppTest, IsConfinedOnceBeforeItStartsAndNotWhenItRemovesItself) {
    int times = 0;
    platform.live.confine = [&] {
        EXPECT_EQ(platform.installation.loginItem, 1) << "after what it still needs the system for";
        EXPECT_FALSE(hasStarted());
        ++times;
    };
    launch();
    EXPECT_EQ(times, 1);
    launch({"--uninstall"});
    EXPECT_EQ(times, 1);
}

TEST_F(AddOnAppTest, StartsBesideNewerCopiesAndOnceOlderOnesHaveQuit) {
    runBeside({{70, ManualClock::kStart + 1s}, {80, ManualClock::kStart + 2s}});
    EXPECT_EQ(launchLines(), (Lines{"app 2 launch: a newer copy (pid 70, 80) is running; starting "
                                    "anyway, it hands over to this one"}));
    EXPECT_TRUE(hasStarted());

    platform.log.take();
    runBeside({{40, std::nullopt}});
    platform.pass(500ms);
    EXPECT_FALSE(hasStarted());
    platform.installation.copies = {kMe};
    platform.pass(250ms);
    EXPECT_EQ(launchLines(),
              (Lines{"app 2 launch: waited 0.75 seconds for the previous copy to quit"}));
    EXPECT_TRUE(hasStarted());
}

TEST_F(AddOnAppTest, AsksOlderCopiesToQuitAndGivesWayToThem) {
    runBeside({{40, std::nullopt}, {41, std::nullopt}});
    platform.pass(12s);
    EXPECT_FALSE(hasStarted());
    EXPECT_EQ(platform.terminations, 1);
    EXPECT_EQ(platform.installation.asked, (InstanceHandover::PIDs{40, 41}));
    EXPECT_EQ(
        launchLines(),
        (Lines{"app 3 launch: an older copy (pid 40, 41) is still running after 10.0 seconds; "
               "asking it to quit",
               "app 4 launch: an older copy (pid 40, 41) won't quit; quitting this one so "
               "only one draws cards"}));
}

TEST_F(AddOnAppTest, EndsSafelyAtEveryPointOfItsLaunch) {
    app.emplace(platform.live);
    app->applicationWillTerminate();
    app->applicationDidFinishLaunching();
    app->applicationWillTerminate();
    platform.pass(1s);
    EXPECT_FALSE(hasStarted());

    runBeside({{40, std::nullopt}});
    platform.pass(1s);
    app->applicationWillTerminate();
    platform.installation.copies = {kMe};
    platform.pass(12s);
    EXPECT_FALSE(hasStarted());
    EXPECT_EQ(platform.clock.pendingTimers(), 0u);
}

TEST_F(AddOnAppTest, RemovesItselfWithoutEverStarting) {
    launch({"--uninstall"});
    EXPECT_EQ(launchLines().front(), "removal 2 launch: asked to uninstall; removing the add-on");
    EXPECT_TRUE(platform.installation.bundles.empty());
    EXPECT_EQ(platform.terminations, 1);
    platform.pass(1s);
    EXPECT_FALSE(hasStarted());

    // Without a home folder there is no support folder to delete.
    platform.log.take();
    platform.live.services.installation.applicationSupport.reset();
    platform.live.services.process.bundle = "/nowhere/Quorvane Lock Screen.app";
    platform.installation.bundles.emplace("/nowhere/Quorvane Lock Screen.app", kOwn);
    platform.installation.bundles.emplace(kBundle, kOwn);
    platform.defaults.values = {{"removalPending", PropertyValue{true}},
                                {"removalBundleIdentity", PropertyValue{kOwn}}};
    launch();
    const Lines lines = launchLines();
    ASSERT_GT(lines.size(), 3u);
    EXPECT_EQ(lines[0], "removal 2 launch: a removal is pending; finishing it");
    EXPECT_EQ(lines[3], "removal 4 removal: refusing to delete : not the add-on's support folder");
    EXPECT_EQ(platform.installation.bundles.size(), 1u);
    EXPECT_TRUE(platform.defaults.values.empty());
}

}  // namespace
}  // namespace quorvane
