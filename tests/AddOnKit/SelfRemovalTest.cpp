#include "AddOnKit/SelfRemoval.hpp"

#include <gtest/gtest.h>

#include <set>

#include "AddOnKit/LoginItem.hpp"
#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

const std::string kOwn = "example.quillon.Quorvane.LockScreenAddOn";
const std::filesystem::path kSupport = "/home/me/share/" + kOwn;
const std::filesystem::path kBundle = kSupport / "Quorvane Lock Screen.app";

// A tree of paths, a login item and preferences, each of which can refuse.
struct SelfRemovalTest : testing::Test {
    SelfRemoval removal() {
        return {
            .defaults = defaults.table(),
            .loginItem = {.status = [this] { return loginItem; },
                          .registerItem = [this] { return change(1); },
                          .unregisterItem = [this] { return change(0); }},
            .fileManager = {.removeItem = [this](const auto& path) { return removeItem(path); },
                            .fileExists = [this](const auto& path) { return paths.contains(path); },
                            .identity = [this](const auto& path) -> std::optional<std::string> {
                                if (!paths.contains(path)) return std::nullopt;
                                return identity;
                            }},
            .bundle = bundle,
            .supportDirectory = support,
            .terminate =
                [this] {
                    ++terminations;
                    pendingAtEnd = defaults.values.contains("removalPending");
                },
            .log = Logger{log.sink(), kOwn, "removal"}};
    }
    Result<void> change(std::int64_t status) {
        if (loginItemRefuses || ++calls == failing)
            return std::unexpected{PlatformError{.code = 1, .description = "no agent"}};
        loginItem = status;
        return {};
    }
    Result<void> removeItem(const std::filesystem::path& path) {
        EXPECT_TRUE(defaults.values.contains("removalPending"))
            << "deleted before the flag was written";
        if (!paths.contains(path))
            return std::unexpected{PlatformError{PlatformError::Domain::cocoa, 4, "no such file"}};
        if (filesRefuse || ++calls == failing)
            return std::unexpected{PlatformError{.code = 13, .description = "denied"}};
        std::erase_if(paths, [&](const std::filesystem::path& each) {
            return each.string().starts_with(path.string());
        });
        return {};
    }

    MemoryDefaults defaults;
    std::int64_t loginItem = LoginItemClient::kEnabled;
    bool loginItemRefuses = false;
    bool filesRefuse = false;
    int calls = 0;    // of what may fail
    int failing = 0;  // the number of the one that does
    std::filesystem::path bundle = kBundle;
    std::filesystem::path support = kSupport;
    std::set<std::filesystem::path> paths{kSupport, kBundle, "/home/me/share"};
    std::string identity = kOwn;
    int terminations = 0;
    bool pendingAtEnd = false;
    RecordingLog log;
};

TEST_F(SelfRemovalTest, RemovesEverythingOfItsOwnAndQuits) {
    defaults.values = {{"installID", PropertyValue{kOwn}}};
    removal().perform();
    EXPECT_EQ(paths, (std::set<std::filesystem::path>{"/home/me/share"}));
    EXPECT_EQ(loginItem, LoginItemClient::kNotRegistered);
    EXPECT_TRUE(defaults.values.empty());
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(log.take(),
              (std::vector<std::string>{"removal: starting", "removal: login item unregistered",
                                        "removal: deleted the support folder",
                                        "removal: the bundle was already gone",
                                        "removal: finished; quitting"}));
}

TEST_F(SelfRemovalTest, ABundleElsewhereIsDeletedOnlyWhenItIsTheAddOn) {
    bundle = "/opt/Quorvane Lock Screen.app";
    paths.insert(bundle);
    removal().perform();
    EXPECT_FALSE(paths.contains(bundle));
    EXPECT_TRUE(log.contains("removal: deleted the bundle"));

    const auto refuses = [this](const char* place, const char* owner) {
        bundle = place;
        identity = owner;
        paths.insert(bundle);
        log.take();
        removal().perform();
        EXPECT_TRUE(paths.contains(bundle));
        EXPECT_TRUE(pendingAtEnd);
        EXPECT_TRUE(log.contains("removal: refusing to delete " + bundle.string() +
                                 ": not the add-on's bundle"));
        EXPECT_TRUE(
            log.contains("removal: the bundle is still there; keeping removalPending so the next "
                         "launch finishes it; "
                         "quitting"));
    };
    refuses("/opt/build/Contents", kOwn.c_str());
    refuses("/opt/Other.app", "another.Bundle");
    EXPECT_EQ(terminations, 3);
}

TEST_F(SelfRemovalTest, AFolderOfAnotherNameIsNeverDeleted) {
    support = "/home/me/share";
    bundle = "/home/me/share/gone.app";
    removal().perform();
    EXPECT_TRUE(paths.contains("/home/me/share"));
    const auto lines = log.take();
    EXPECT_EQ(lines[2],
              "removal: refusing to delete /home/me/share: not the add-on's support folder");
    EXPECT_EQ(
        lines[4],
        "removal: an earlier step failed, but the bundle is gone; clearing preferences anyway");
    EXPECT_FALSE(pendingAtEnd);
}

TEST_F(SelfRemovalTest, ALinkOrAFolderWithAForeignBundleIsNeverDeleted) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "target");
    support = folder / kOwn;
    std::filesystem::create_directory_symlink(folder / "target", support);
    paths.insert(support);
    bundle = "/gone.app";
    removal().perform();
    EXPECT_TRUE(paths.contains(support));
    EXPECT_TRUE(log.contains("removal: refusing to delete " + support.string() +
                             ": not the add-on's support folder"));

    support = kSupport;
    identity = "another.Bundle";
    removal().perform();
    EXPECT_TRUE(paths.contains(kBundle));
    EXPECT_TRUE(log.contains("removal: refusing to delete " + kSupport.string() +
                             ": not the add-on's support folder"));
}

TEST_F(SelfRemovalTest, WhatRefusesIsReportedAndTriedAgainAtTheNextLaunch) {
    loginItemRefuses = filesRefuse = true;
    removal().perform();
    EXPECT_TRUE(pendingAtEnd);
    EXPECT_EQ(*find<std::string>(defaults.values, "removalBundleIdentity"), kOwn);
    EXPECT_TRUE(log.contains("removal: unregister() failed: no agent"));
    EXPECT_TRUE(log.contains("removal: deleting the support folder failed: denied"));
    filesRefuse = false;
    log.take();
    removal().perform();
    EXPECT_FALSE(pendingAtEnd);
    EXPECT_EQ(paths, (std::set<std::filesystem::path>{"/home/me/share"}));
    EXPECT_TRUE(log.contains(
        "removal: an earlier step failed, but the bundle is gone; clearing preferences anyway"));
}

TEST_F(SelfRemovalTest, WhicheverCallFailsTheNextRunFindsWhatIsLeft) {
    bundle = "/opt/Quorvane Lock Screen.app";  // so that each has a call of its own
    for (failing = 1; failing <= 4; ++failing) {
        calls = 0;
        loginItem = LoginItemClient::kEnabled;
        paths = {kSupport, bundle, "/home/me/share"};
        removal().perform();
        EXPECT_EQ(paths.contains(bundle), failing == 3);
        EXPECT_EQ(pendingAtEnd, failing == 3) << "as long as the bundle is there to go on";
        EXPECT_EQ(calls, 3) << "none is left out because another one failed";
        if (failing > 3) break;
        removal().perform();
        EXPECT_EQ(paths, (std::set<std::filesystem::path>{"/home/me/share"})) << failing;
        EXPECT_FALSE(pendingAtEnd);
    }
    EXPECT_TRUE(defaults.values.empty());
}

TEST_F(SelfRemovalTest, TheLoginItemIsRegisteredUnlessTheUserSaidNo) {
    const Logger logger{log.sink(), kOwn, "app"};
    const auto after = [&](std::int64_t status) {
        loginItem = status;
        ensureLoginItemIsRegistered(removal().loginItem, logger);
        return loginItem;
    };
    EXPECT_EQ(after(1), 1);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(after(0), 1);
    EXPECT_EQ(after(3), 1);
    EXPECT_EQ(after(2), 2);
    EXPECT_EQ(after(7), 7);
    loginItemRefuses = true;
    EXPECT_EQ(after(0), 0);
    EXPECT_EQ(log.take(), (std::vector<std::string>{
                              "login item: registered (now 1)", "login item: registered (now 1)",
                              "login item: awaiting approval in Login Items; leaving it alone",
                              "login item: unknown status 7; leaving it alone",
                              "login item: register() failed: no agent"}));
}

}  // namespace
}  // namespace quorvane
