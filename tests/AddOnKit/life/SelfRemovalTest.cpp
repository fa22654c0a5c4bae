#include "AddOnKit/life/SelfRemoval.hpp"

#include <gtest/gtest.h>

#include "AddOnKit/life/LoginItem.hpp"
#include "tests/support/FakeInstallation.hpp"
#include "tests/support/MemoryDefaults.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

const std::string kOwn = "example.quillon.Quorvane.LockScreenAddOn";
const std::filesystem::path kSupport = "/home/me/share/" + kOwn;
const std::filesystem::path kBundle = kSupport / "Quorvane Lock Screen.app";

const std::filesystem::path kElsewhere = "/opt/Quorvane Lock Screen.app";

struct SelfRemovalTest : testing::Test {
    SelfRemoval removal() {
        FileManagerClient files = installation.table().fileManager;
        files.removeItem = [this, remove = files.removeItem](const auto& path) {
            EXPECT_TRUE(defaults.values.contains("removalPending"))
                << "deleted before the flag was written";
            return remove(path);
        };
        return {.defaults = defaults.table(),
                .loginItem = installation.table().loginItem,
                .fileManager = files,
                .bundle = bundle,
                .supportDirectory = support,
                .terminate =
                    [this] {
                        ++terminations;
                        pendingAtEnd = defaults.values.contains("removalPending");
                    },
                .log = Logger{log.sink(), kOwn, "removal"}};
    }
    bool isThere(const std::filesystem::path& place) const {
        return installation.bundles.contains(place);
    }
    bool isAllGone() const { return installation.bundles == kOthers; }
    bool refusedToDelete(const std::filesystem::path& place, const char* reason) const {
        return log.contains("removal: refusing to delete " + place.string() +
                            ": not the add-on's " + reason);
    }

    const std::map<std::filesystem::path, std::string> kOthers{{"/home/me/share/X.app", "X"}};
    FakeInstallation installation{.bundles = {{kBundle, kOwn}, *kOthers.begin()}};
    MemoryDefaults defaults;
    std::filesystem::path bundle = kBundle;
    std::filesystem::path support = kSupport;
    int terminations = 0;
    bool pendingAtEnd = false;
    RecordingLog log;
};

TEST_F(SelfRemovalTest, RemovesEverythingOfItsOwnAndQuits) {
    defaults.values = {{"installID", PropertyValue{kOwn}}};
    removal().perform();
    EXPECT_TRUE(isAllGone());
    EXPECT_EQ(installation.loginItem, LoginItemClient::kNotRegistered);
    EXPECT_TRUE(defaults.values.empty());
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(log.take(),
              (Lines{"removal: starting", "removal: login item unregistered",
                     "removal: deleted the support folder", "removal: the bundle was already gone",
                     "removal: finished; quitting"}));
}

TEST_F(SelfRemovalTest, DeletesNothingWhenItCannotBeMarkedAsPending) {
    defaults.refuses = true;
    removal().perform();
    EXPECT_TRUE(isThere(kBundle));
    EXPECT_EQ(installation.loginItem, LoginItemClient::kEnabled);
    EXPECT_EQ(terminations, 1);
    EXPECT_EQ(
        log.take(),
        (Lines{"removal: starting",
               "removal: not marked as pending: full (error 28); deleting nothing; quitting"}));
}

TEST_F(SelfRemovalTest, ABundleElsewhereIsDeletedOnlyWhenItIsTheAddOn) {
    bundle = kElsewhere;
    installation.bundles[bundle] = kOwn;
    removal().perform();
    EXPECT_FALSE(isThere(bundle));
    EXPECT_TRUE(log.contains("removal: deleted the bundle"));

    for (const auto& [place, owner] : {std::pair{"/opt/build/Contents", kOwn.c_str()},
                                       std::pair{"/opt/Other.app", "another.Bundle"}}) {
        bundle = place;
        installation.bundles[bundle] = owner;
        log.take();
        removal().perform();
        EXPECT_TRUE(isThere(bundle));
        EXPECT_TRUE(pendingAtEnd);
        EXPECT_TRUE(refusedToDelete(bundle, "bundle"));
        EXPECT_TRUE(
            log.contains("removal: the bundle is still there; keeping removalPending so the next "
                         "launch finishes it; quitting"));
    }
    EXPECT_EQ(terminations, 3);
}

TEST_F(SelfRemovalTest, AFolderOfAnotherNameIsNeverDeleted) {
    support = "/home/me/share";
    bundle = "/home/me/share/gone.app";
    removal().perform();
    EXPECT_TRUE(isThere("/home/me/share/X.app"));
    EXPECT_TRUE(refusedToDelete("/home/me/share", "support folder"));
    EXPECT_TRUE(log.contains(
        "removal: an earlier step failed, but the bundle is gone; clearing preferences anyway"));
    EXPECT_FALSE(pendingAtEnd);
}

TEST_F(SelfRemovalTest, ALinkOrAFolderWithAForeignBundleIsNeverDeleted) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "target");
    support = folder / kOwn;
    std::filesystem::create_directory_symlink(folder / "target", support);
    installation.bundles[support] = "";
    bundle = "/gone.app";
    removal().perform();
    EXPECT_TRUE(isThere(support));
    EXPECT_TRUE(refusedToDelete(support, "support folder"));

    support = kSupport;
    installation.bundles[kBundle] = "another.Bundle";
    removal().perform();
    EXPECT_TRUE(isThere(kBundle));
    EXPECT_TRUE(refusedToDelete(support, "support folder"));
}

TEST_F(SelfRemovalTest, WhicheverCallFailsTheNextRunFindsWhatIsLeft) {
    bundle = kElsewhere;  // so that each has a call of its own
    for (int failing = 1; failing <= 4; ++failing) {
        installation = {.bundles = {{kBundle, kOwn}, {bundle, kOwn}, *kOthers.begin()},
                        .failing = failing};
        removal().perform();
        EXPECT_EQ(isThere(bundle), failing == 3);
        EXPECT_EQ(pendingAtEnd, failing == 3) << "as long as the bundle is there to go on";
        EXPECT_EQ(defaults.values.contains("removalBundleIdentity"), failing == 3);
        EXPECT_EQ(installation.calls, 3) << "none is left out because another one failed";
        if (failing > 3) break;
        removal().perform();
        EXPECT_TRUE(isAllGone()) << failing;
        EXPECT_FALSE(pendingAtEnd);
    }
    EXPECT_TRUE(defaults.values.empty());
    EXPECT_TRUE(log.contains("removal: unregister() failed: no agent (error 1)"));
    EXPECT_TRUE(log.contains("removal: deleting the support folder failed: denied (error 13)"));
}

TEST_F(SelfRemovalTest, TheLoginItemIsRegisteredUnlessTheUserSaidNo) {
    const Logger logger{log.sink(), kOwn, "app"};
    const auto after = [&](std::int64_t status) {
        installation.loginItem = status;
        ensureLoginItemIsRegistered(removal().loginItem, logger);
        return installation.loginItem;
    };
    EXPECT_EQ(after(1), 1);
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(after(0), 1);
    EXPECT_EQ(after(3), 1);
    EXPECT_EQ(after(2), 2);
    EXPECT_EQ(after(7), 7);
    installation.loginItemRefuses = true;
    EXPECT_EQ(after(0), 0);
    EXPECT_EQ(log.take(), (Lines{"login item: registered (now 1)", "login item: registered (now 1)",
                                 "login item: awaiting approval in Login Items; leaving it alone",
                                 "login item: unknown status 7; leaving it alone",
                                 "login item: register() failed: no agent (error 1)"}));
}

}  // namespace
}  // namespace quorvane
