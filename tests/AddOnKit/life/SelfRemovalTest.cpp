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
constexpr char kEarlierStepFailed[] =
    "removal: an earlier step failed, but the bundle is gone; clearing preferences anyway";
constexpr char kBundleIsLeft[] =
    "removal: the bundle is still there; keeping removalPending so the next launch finishes it; "
    "quitting";

struct SelfRemovalTest : testing::Test {
    void perform() {
        FileManagerClient files = installation.table().fileManager;
        files.removeItem = [this, remove = files.removeItem](const auto& path) {
            EXPECT_EQ(defaults.values["removalPending"], PropertyValue{true})
                << "deleted before the flag was written";
            return remove(path);
        };
        const auto terminate = [this] {
            ++terminations;
            pendingAtEnd = defaults.values.contains("removalPending");
        };
        SelfRemoval{.defaults = defaults.table(),
                    .loginItem = installation.table().loginItem,
                    .fileManager = files,
                    .bundle = bundle,
                    .supportDirectory = support,
                    .terminate = terminate,
                    .log = Logger{log.sink(), kOwn, "removal"}}
            .perform();
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

TEST_F(SelfRemovalTest, DeletesNothingWhenItCannotBeMarkedAsPending) {
    defaults.refuses = true;
    perform();
    EXPECT_TRUE(installation.bundles.contains(kBundle));
    EXPECT_EQ(installation.loginItem, LoginItemClient::kEnabled);
    EXPECT_EQ(terminations, 1);
    EXPECT_TRUE(log.contains(
        "removal: not marked as pending: full (error 28); deleting nothing; quitting"));
}

TEST_F(SelfRemovalTest, DeletesOnlyWhatIsTheAddOns) {
    const TemporaryFolder folder;
    const std::filesystem::path link = folder / kOwn;
    std::filesystem::create_directory(folder / "target");
    std::filesystem::create_directory_symlink(folder / "target", link);
    const struct {
        std::filesystem::path support, bundle, foreign;
        std::string owner;
    } rows[] = {{kSupport, "/opt/build/Contents", "/opt/build/Contents", kOwn},
                {kSupport, "/opt/Other.app", "/opt/Other.app", "another.Bundle"},
                {"/home/me/share", "/gone.app", "/home/me/share/X.app", "X"},
                {link, "/gone.app", link, ""},
                {kSupport, "/gone.app", kBundle, "another.Bundle"}};
    for (const auto& row : rows) {
        support = row.support;
        bundle = row.bundle;
        installation.bundles[row.foreign] = row.owner;
        perform();
        const bool isBundle = row.bundle == row.foreign;
        EXPECT_TRUE(installation.bundles.contains(row.foreign));
        EXPECT_TRUE(
            log.contains("removal: refusing to delete " +
                         (isBundle ? bundle.string() + ": not the add-on's bundle"
                                   : support.string() + ": not the add-on's support folder")));
        EXPECT_TRUE(log.contains(isBundle ? kBundleIsLeft : kEarlierStepFailed));
        EXPECT_EQ(pendingAtEnd, isBundle);
        log.take();
    }
    EXPECT_EQ(terminations, 5);
}

TEST_F(SelfRemovalTest, TheNextRunRemovesWhatAFailedCallHasLeft) {
    bundle = "/opt/Quorvane Lock Screen.app";  // so that folder and bundle need a call each
    const char* const lines[] = {"removal: unregister() failed: no agent (error 1)",
                                 "removal: deleting the support folder failed: denied (error 13)",
                                 "removal: deleting the bundle failed: denied (error 13)",
                                 "removal: finished; quitting"};
    for (int failing = 1; failing <= 4; ++failing) {
        installation = {.bundles = {{kBundle, kOwn}, {bundle, kOwn}, *kOthers.begin()},
                        .failing = failing};
        perform();
        EXPECT_TRUE(log.contains(lines[failing - 1]));
        EXPECT_EQ(log.contains(kEarlierStepFailed), failing < 3);
        EXPECT_EQ(installation.bundles.contains(bundle), failing == 3);
        EXPECT_EQ(pendingAtEnd, failing == 3) << "while the bundle is there to continue";
        EXPECT_EQ(defaults.values.contains("removalBundleIdentity"), failing == 3);
        EXPECT_EQ(installation.calls, 3) << "no call is omitted because another one failed";
        log.take();
        perform();
        EXPECT_EQ(installation.bundles, kOthers) << failing;
        EXPECT_FALSE(pendingAtEnd);
        EXPECT_EQ(log.contains("removal: the support folder was already gone"), failing != 2);
        EXPECT_FALSE(log.contains(kEarlierStepFailed));
        EXPECT_EQ(terminations, 2 * failing);
    }
    EXPECT_TRUE(defaults.values.empty());
}

}  // namespace
}  // namespace quorvane
