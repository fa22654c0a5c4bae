#include <gtest/gtest.h>

#include <set>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "QuorvaneKit/link/SharedDefaults.hpp"
#include "QuorvaneKit/link/SharedDefaultsKey.hpp"
#include "tests/support/ManualClock.hpp"
#include "tests/support/MemoryDefaults.hpp"

namespace quorvane {
namespace {

TEST(DarwinNotification, EachNameIsItsOwnAndStandsUnderThePrefix) {
    using Name = QuorvaneDarwinNotification;
    EXPECT_STREQ(Name::playerStateChanged, "example.quillon.Quorvane.playerStateChanged");
    EXPECT_STREQ(Name::lockScreenConfigurationChanged,
                 "example.quillon.Quorvane.lockScreenConfigurationChanged");
    EXPECT_STREQ(Name::mainAppWillTerminate, "example.quillon.Quorvane.mainAppWillTerminate");
    std::set<std::string_view> names{Name::playerStateChanged, Name::lockScreenConfigurationChanged,
                                     Name::mainAppWillTerminate};
    names.insert(std::begin(Name::kOthers), std::end(Name::kOthers));
    names.insert(std::begin(Name::kWidgetPrefixes), std::end(Name::kWidgetPrefixes));
    EXPECT_EQ(names.size(), 25u);
    for (const std::string_view name : names)
        EXPECT_TRUE(name.starts_with(std::string{kIdentifierPrefix} + ".")) << name;
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
    using Key = SharedDefaultsKey;
    std::set<std::string_view> names{Key::lockScreenEnabled, Key::lockScreenRemovalRequested,
                                     Key::lockScreenRemovalTargetInstallID,
                                     Key::lockScreenAddOnLastSeen};
    names.insert(std::begin(Key::kOthers), std::end(Key::kOthers));
    EXPECT_EQ(names.size(), 31u);
}

}  // namespace
}  // namespace quorvane
