#include "Quorvane_Lock_Screen/AddOnApp.hpp"

#include <gtest/gtest.h>

#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

const std::string kOwn = "example.quillon.Quorvane.LockScreenAddOn";
const std::filesystem::path kBundle = "/support/" + kOwn + "/Quorvane Lock Screen.app";
constexpr RunningCopy kMe = FakeInstallation::kMe;

struct AddOnAppTest : testing::Test, FakePlatform {
    AddOnAppTest() {
        installation.bundles = {{kBundle, kOwn}};
        live.services.process.bundle = kBundle;
        live.services.application.terminate = [this] {
            ++terminations;
            app->applicationWillTerminate();
        };
    }
    void launch(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.begin(), "add-on");
        live.services.process.arguments = std::move(arguments);
        app.emplace(live);
        app->applicationDidFinishLaunching();
        clock.advance(Duration{});
        settle();
    }
    void launchBeside(std::vector<RunningCopy> others) {
        others.push_back(kMe);
        installation.copies = std::move(others);
        launch();
    }
    // The lines since the last call, with their levels, up to the coordinator's first one.
    Lines launchLines() {
        Lines lines;
        for (const auto& line : log.lines()) {
            if (line.text == kStarted) break;
            lines.push_back(std::to_string(std::to_underlying(line.level)) + " " + line.text);
        }
        hasStarted = log.contains(kStarted);
        log.take();
        return lines;
    }

    static constexpr char kStarted[] = "launch: 1.2.3, pid 4711";
    bool hasStarted = false;  // in these lines
    std::optional<AddOnApp> app;
};

TEST_F(AddOnAppTest, RegistersItsLoginItemUnlessTheUserHasSwitchedItOff) {
    const struct {
        std::int64_t before, after;
        Lines lines;
    } rows[] = {{1, 1, {}},
                {0, 1, {"1 login item: registered (now 1)"}},
                {3, 1, {"1 login item: registered (now 1)"}},
                {2, 2, {"1 login item: awaiting approval in Login Items; leaving it alone"}},
                {7, 7, {"3 login item: unknown status 7; leaving it alone"}},
                {0, 0, {"3 login item: register() failed: no agent (error 1)"}}};
    for (const auto& row : rows) {
        installation.loginItem = row.before;
        installation.loginItemRefuses = row.after == 0;
        launch();
        EXPECT_EQ(installation.loginItem, row.after);
        EXPECT_EQ(launchLines(), row.lines);
        EXPECT_TRUE(hasStarted);
    }
}

TEST_F(AddOnAppTest, IsConfinedOnceBeforeItStartsAndNotWhenItRemovesItself) {
    int times = 0;
    live.confine = [&] {
        EXPECT_EQ(installation.loginItem, 1) << "after the steps that still need the system";
        EXPECT_FALSE(log.contains(kStarted));
        ++times;
    };
    launch();
    EXPECT_EQ(times, 1);
    launch({"--uninstall"});
    EXPECT_EQ(times, 1);
}

TEST_F(AddOnAppTest, StartsUnlessAnOlderCopyKeepsRunning) {
    const auto expect = [this](std::vector<RunningCopy> others, Duration quitAfter, bool starts,
                               const Lines& lines) {
        launchBeside(std::move(others));
        pass(quitAfter);
        installation.copies = {kMe};
        pass(250ms);
        EXPECT_EQ(launchLines(), lines);
        EXPECT_EQ(hasStarted, starts);
        EXPECT_EQ(terminations, starts ? 0 : 1);
    };
    const RunningCopy older{40, std::nullopt};
    const std::string asks = " is still running after 10.0 seconds; asking it to quit";
    expect({{70, ManualClock::kStart + 1s}, {80, ManualClock::kStart + 2s}}, 0s, true,
           {"2 launch: a newer copy (pid 70, 80) is running; starting anyway, it hands over to "
            "this one"});
    expect({older}, 500ms, true, {"2 launch: waited 0.75 seconds for the previous copy to quit"});
    expect({older}, 11s, true,
           {"3 launch: an older copy (pid 40)" + asks,
            "2 launch: the previous copy (pid 40) quit when asked"});
    expect({older, {41, std::nullopt}}, 12s, false,
           {"3 launch: an older copy (pid 40, 41)" + asks,
            "4 launch: an older copy (pid 40, 41) won't quit; quitting this one so only one draws "
            "cards"});
    EXPECT_EQ(installation.asked, (InstanceHandover::PIDs{40, 40, 41}));
}

TEST_F(AddOnAppTest, EndsSafelyAtEveryPointOfItsLaunch) {
    app.emplace(live);
    app->applicationWillTerminate();
    app->applicationDidFinishLaunching();
    app->applicationWillTerminate();
    pass(1s);
    launchBeside({{40, std::nullopt}});
    pass(1s);
    app->applicationWillTerminate();
    installation.copies = {kMe};
    pass(12s);
    EXPECT_FALSE(log.contains(kStarted));
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(AddOnAppTest, RemovesItselfWithoutEverStarting) {
    launch({"--uninstall"});
    EXPECT_EQ(launchLines(),
              (Lines{"2 launch: asked to uninstall; removing the add-on", "2 removal: starting",
                     "1 removal: login item unregistered", "1 removal: deleted the support folder",
                     "1 removal: the bundle was already gone", "2 removal: finished; quitting"}));
    EXPECT_TRUE(installation.bundles.empty());
    EXPECT_EQ(terminations, 1);

    // Without a home folder there is no support folder to delete.
    const std::filesystem::path nowhere = "/nowhere/Quorvane Lock Screen.app";
    live.services.installation.applicationSupport.reset();
    live.services.process.bundle = nowhere;
    installation.bundles = {{nowhere, kOwn}, {kBundle, kOwn}};
    defaults.values = {{"removalPending", PropertyValue{true}},
                       {"removalBundleIdentity", PropertyValue{kOwn}}};
    launch();
    const Lines lines = launchLines();
    EXPECT_FALSE(hasStarted);
    EXPECT_EQ(lines.at(0), "2 launch: a removal is pending; finishing it");
    EXPECT_EQ(lines.at(3), "4 removal: refusing to delete : not the add-on's support folder");
    EXPECT_EQ(installation.bundles.size(), 1u);
    EXPECT_TRUE(defaults.values.empty());
}

}  // namespace
}  // namespace quorvane
