#include "AddOnKit/life/SelfRemoval.hpp"

#include <gtest/gtest.h>

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
constexpr char kEarlierStepFailed[] =
    "removal: an earlier step failed, but the bundle is gone; clearing preferences anyway";

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

TEST_F(SelfRemovalTest, OnlyTheAddOnsOwnSupportFolderIsDeleted) {
    const TemporaryFolder folder;
    const std::filesystem::path link = folder / kOwn;
    std::filesystem::create_directory(folder / "target");
    std::filesystem::create_directory_symlink(folder / "target", link);
    installation.bundles[link] = "";
    installation.bundles[kBundle] = "another.Bundle";
    bundle = "/gone.app";
    for (const auto& [place, content] :
         {std::pair{std::filesystem::path{"/home/me/share"}, "/home/me/share/X.app"},
          std::pair{link, link.c_str()}, std::pair{kSupport, kBundle.c_str()}}) {
        support = place;
        removal().perform();
        EXPECT_TRUE(isThere(content));
        EXPECT_TRUE(refusedToDelete(support, "support folder"));
        EXPECT_TRUE(log.contains(kEarlierStepFailed));
        EXPECT_FALSE(pendingAtEnd);
        log.take();
    }
}

TEST_F(SelfRemovalTest, TheNextRunRemovesWhatAFailedCallHasLeft) {
    bundle = kElsewhere;  // so that folder and bundle are deleted by two calls
    const char* const lines[] = {"removal: unregister() failed: no agent (error 1)",
                                 "removal: deleting the support folder failed: denied (error 13)",
                                 "removal: deleting the bundle failed: denied (error 13)",
                                 "removal: finished; quitting"};
    for (int failing = 1; failing <= 4; ++failing) {
        installation = {.bundles = {{kBundle, kOwn}, {bundle, kOwn}, *kOthers.begin()},
                        .failing = failing};
        removal().perform();
        EXPECT_TRUE(log.contains(lines[failing - 1]));
        EXPECT_EQ(log.contains(kEarlierStepFailed), failing < 3);
        EXPECT_EQ(isThere(bundle), failing == 3);
        EXPECT_EQ(pendingAtEnd, failing == 3) << "while the bundle is there to continue";
        EXPECT_EQ(defaults.values.contains("removalBundleIdentity"), failing == 3);
        EXPECT_EQ(installation.calls, 3) << "no call is omitted because another one failed";
        log.take();
        removal().perform();
        EXPECT_TRUE(isAllGone()) << failing;
        EXPECT_FALSE(pendingAtEnd);
        EXPECT_EQ(log.contains("removal: the support folder was already gone"), failing != 2);
        EXPECT_FALSE(log.contains(kEarlierStepFailed));
    }
    EXPECT_TRUE(defaults.values.empty());
}

}  // namespace
}  // namespace quorvane
