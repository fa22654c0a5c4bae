#include <gtest/gtest.h>

#include <set>

#include "QuorvaneKit/link/DarwinNotificationCenter.hpp"
#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/MemoryDefaults.hpp"

namespace quorvane {
namespace {

TEST(DarwinNotification, NamesStandUnderThePrefixAndComeBack) {
    using Name = QuorvaneDarwinNotification;
    std::set<std::string_view> names;
    for (int index = 0; index <= static_cast<int>(Name::widgetWindowLevelChanged); ++index) {
        const auto name = static_cast<Name>(index);
        EXPECT_TRUE(rawValue(name).starts_with(std::string{kIdentifierPrefix} + "."));
        EXPECT_EQ(quorvaneDarwinNotification(rawValue(name)), name);
        names.insert(rawValue(name));
    }
    EXPECT_EQ(names.size(), 22u);
    EXPECT_EQ(quorvaneDarwinNotification("example.quillon.Quorvane.LockScreenAddOn.quit"),
              std::nullopt);

    std::vector<std::string> posted;
    const DarwinNotificationCenter center{
        {.post = [&](const std::string& name) { posted.push_back(name); }, .observe = {}}};
    center.post(Name::playerStateChanged);
    center.post(Name::lockScreenConfigurationChanged);
    center.post(Name::mainAppWillTerminate);
    center.post(Name::widgetWindowLevelChanged);
    center.post(QuorvaneWidgetNotification::widgetReset, "a");
    center.post(QuorvaneWidgetNotification::widgetSettingsChanged, "b");
    center.post(QuorvaneWidgetNotification::widgetUpdated, "c");
    EXPECT_EQ(posted,
              (std::vector<std::string>{"example.quillon.Quorvane.playerStateChanged",
                                        "example.quillon.Quorvane.lockScreenConfigurationChanged",
                                        "example.quillon.Quorvane.mainAppWillTerminate",
                                        "example.quillon.Quorvane.widgetWindowLevelChanged",
                                        "example.quillon.Quorvane.widgetReset.a",
                                        "example.quillon.Quorvane.widgetSettingsChanged.b",
                                        "example.quillon.Quorvane.widgetUpdated.c"}));
}

const LockScreenAddOnSighting kSighting{"1.2.3", "26.1.0", true, ManualClock::kStart, "A"};

TEST(SharedDefaults, KeepsTheLockScreensValuesUnderTheirKeys) {
    MemoryDefaults memory;
    SharedDefaults defaults{memory.table()};
    EXPECT_TRUE(defaults.setLockScreenEnabled(true));
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval(LockScreenPendingRemoval{"A"}));
    EXPECT_TRUE(defaults.setLockScreenAddOnLastSeen(kSighting));
    EXPECT_EQ(memory.synchronizations, 3);
    EXPECT_EQ(memory.values.at("lockScreenEnabled"), PropertyValue{true});
    EXPECT_EQ(memory.values.at("lockScreenRemovalRequested"), PropertyValue{true});
    EXPECT_EQ(memory.values.at("lockScreenRemovalTargetInstallID"),
              PropertyValue{std::string{"A"}});
    EXPECT_EQ(memory.values.size(), 4u);

    const SharedDefaults again{memory.table()};
    EXPECT_TRUE(again.lockScreenEnabled());
    EXPECT_EQ(again.lockScreenPendingRemoval(), LockScreenPendingRemoval{"A"});
    EXPECT_EQ(again.lockScreenAddOnLastSeen(), kSighting);
    MemoryDefaults shared = memory;
    UserDefaults raced = shared.table();
    raced.get = [&](const std::string& key) {
        const auto value = shared.table().get(key);
        shared.values.clear();  // another process voids the removal between two looks
        return value;
    };
    EXPECT_EQ(SharedDefaults{raced}.lockScreenPendingRemoval(), LockScreenPendingRemoval{"A"});

    LockScreenAddOnSighting unwritable = kSighting;
    unwritable.addOnVersion = "\xFF";
    EXPECT_TRUE(defaults.setLockScreenAddOnLastSeen(unwritable));
    EXPECT_EQ(again.lockScreenAddOnLastSeen(), kSighting);

    // A removal for anyone must not inherit the target of the one before.
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval(LockScreenPendingRemoval{}));
    EXPECT_EQ(again.lockScreenPendingRemoval(), LockScreenPendingRemoval{});
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval(LockScreenPendingRemoval{"B"}));
    EXPECT_TRUE(defaults.setLockScreenPendingRemoval({}));
    EXPECT_EQ(again.lockScreenPendingRemoval(), std::nullopt);
    EXPECT_TRUE(defaults.setLockScreenAddOnLastSeen({}));
    EXPECT_EQ(memory.values, (PropertyDictionary{{"lockScreenEnabled", PropertyValue{true}}}));
}

TEST(SharedDefaults, ReadsDefaultsWithoutASuiteAndForValuesOfOtherTypes) {
    MemoryDefaults memory;
    memory.values = {{"lockScreenEnabled", PropertyValue{std::int64_t{1}}},
                     {"lockScreenRemovalRequested", PropertyValue{std::string{"true"}}},
                     {"lockScreenRemovalTargetInstallID", PropertyValue{std::string{"A"}}},
                     {"lockScreenAddOnLastSeen", PropertyValue{copyOf(bytesOf("{}"))}}};
    SharedDefaults other{memory.table()};
    SharedDefaults absent{std::nullopt};
    EXPECT_TRUE(absent.setLockScreenEnabled(true));
    EXPECT_TRUE(absent.setLockScreenPendingRemoval(LockScreenPendingRemoval{"A"}));
    EXPECT_TRUE(absent.setLockScreenAddOnLastSeen(kSighting));
    for (const SharedDefaults* defaults : {&other, &absent}) {
        EXPECT_FALSE(defaults->lockScreenEnabled());
        EXPECT_EQ(defaults->lockScreenPendingRemoval(), std::nullopt);
        EXPECT_EQ(defaults->lockScreenAddOnLastSeen(), std::nullopt);
    }
    memory.values["lockScreenRemovalRequested"] = PropertyValue{true};
    memory.values["lockScreenRemovalTargetInstallID"] = PropertyValue{std::int64_t{7}};
    EXPECT_EQ(other.lockScreenPendingRemoval(), LockScreenPendingRemoval{});
}

TEST(SharedDefaults, NoTwoKeysShareAName) {
    std::set<std::string_view> names;
    const auto last = static_cast<std::size_t>(SharedDefaultsKey::widgetWindowLevels);
    for (std::size_t index = 0; index <= last; ++index)
        names.insert(rawValue(static_cast<SharedDefaultsKey>(index)));
    EXPECT_EQ(names.size(), 31u);
    EXPECT_EQ(rawValue(SharedDefaultsKey::lockScreenAddOnLastSeen), "lockScreenAddOnLastSeen");
    EXPECT_EQ(rawValue(SharedDefaultsKey::widgetWindowLevels), "widgetWindowLevels");
}

}  // namespace
}  // namespace quorvane
