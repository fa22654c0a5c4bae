#include "AddOnKit/life/LaunchDecision.hpp"

#include <gtest/gtest.h>

#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

const std::string kOwn = "example.quillon.Quorvane.LockScreenAddOn";

using enum LaunchDecision;

struct LaunchDecisionTest : testing::Test {
    LaunchDecision decide(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "add-on");
        return decideLaunch(
            {.arguments = std::move(arguments),
             .defaults = defaults.table(),
             .sharedDefaults = hasShared ? std::optional{shared.table()} : std::nullopt,
             .bundle = "/nowhere/Quorvane Lock Screen.app",
             .identity = [this](const std::filesystem::path&) { return identity; },
             .log = {log.sink(), kOwn, "removal"}});
    }
    void setPending(std::optional<std::string> recorded) {
        defaults.values = {{"removalPending", PropertyValue{true}},
                           {"installID", PropertyValue{kOwn}}};
        if (recorded) defaults.values.insert({"removalBundleIdentity", PropertyValue{*recorded}});
    }

    MemoryDefaults defaults;
    MemoryDefaults shared;
    bool hasShared = true;
    std::optional<std::string> identity = kOwn;
    RecordingLog log;
};

TEST_F(LaunchDecisionTest, ArgumentsComeBeforeThePreferences) {
    EXPECT_EQ(decide({}), run);
    setPending(kOwn);
    EXPECT_EQ(decide({"--installed"}), run);
    EXPECT_EQ(decide({"--installed", "--uninstall"}), uninstall);
    EXPECT_EQ(decide({}), finishRemoval);
    defaults.values["removalPending"] = PropertyValue{std::int64_t{1}};  // not a boolean
    EXPECT_EQ(decide({}), run);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_TRUE(defaults.values.contains("installID"));
}

TEST_F(LaunchDecisionTest, AFlagOfAnotherCopyIsCleared) {
    using Identity = std::optional<std::string>;
    for (const auto& [recorded, own] :
         {std::pair{Identity{}, Identity{kOwn}}, {kOwn, {}}, {"another.Bundle", kOwn}}) {
        setPending(recorded);
        identity = own;
        defaults.refuses = !recorded;
        EXPECT_EQ(decide({}), run);
        EXPECT_TRUE(defaults.values.empty());
        Lines lines{"launch: a removal flag left by another copy of the add-on; clearing it"};
        if (!recorded) lines.push_back("launch: the removal flag was not cleared: full (error 28)");
        EXPECT_EQ(log.take(), lines);
    }
    EXPECT_EQ(defaults.synchronizations, 3);
}

TEST_F(LaunchDecisionTest, AFreshInstallVoidsTheRemovalRequest) {
    shared.values = {{"lockScreenRemovalRequested", PropertyValue{true}},
                     {"lockScreenRemovalTargetInstallID", PropertyValue{kOwn}},
                     {"lockScreenEnabled", PropertyValue{true}}};
    EXPECT_EQ(decide({}), run);
    EXPECT_EQ(decide({"--installed", "--uninstall"}), uninstall);
    EXPECT_EQ(shared.values.size(), 3u);
    EXPECT_EQ(decide({"--installed"}), run);
    EXPECT_EQ(shared.values.size(), 1u);
    EXPECT_EQ(shared.synchronizations, 1);
    EXPECT_TRUE(log.lines().empty());
    shared.refuses = true;
    EXPECT_EQ(decide({"--installed"}), run);
    EXPECT_EQ(log.take(), Lines{"launch: the removal request was not cleared: full (error 28)"});
    hasShared = false;
    EXPECT_EQ(decide({"--installed"}), run);
}

}  // namespace
}  // namespace quorvane
