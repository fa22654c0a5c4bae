// The adapters' contract for files and preferences, checked on the real system.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "platform/BundleFiles.hpp"
#include "platform/macos/files/FilesMacOS.hpp"
#include "platform/macos/services/ServicesMacOS.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

TEST(FileStoreMacOS, WritesForTheOwnerAndReadsBack) {
    const TemporaryFolder folder;
    const FileStore files = makeFileStoreMacOS();
    const auto path = folder / "secret";
    ASSERT_TRUE(files.writeAtomically(path, bytesOf("old")));
    ASSERT_TRUE(files.writeAtomically(path, bytesOf("new")));
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    EXPECT_EQ(textOf(*files.read(path)), "new");
    const auto missing = files.read(folder / "missing");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().domain, PlatformError::Domain::cocoa);
    EXPECT_EQ(missing.error().code, 260);
}

TEST(FileManagerMacOS, RemovesALinkAndNotWhatItLeadsTo) {
    const TemporaryFolder folder;
    const FileManagerClient files = makeInstallationMacOS().fileManager;
    std::filesystem::create_directories(folder / "real" / "inside");
    std::filesystem::create_symlink(folder / "real", folder / "link");
    EXPECT_TRUE(files.removeItem(folder / "link"));
    EXPECT_TRUE(files.fileExists(folder / "real" / "inside"));
    EXPECT_TRUE(files.removeItem(folder / "real"));
    const auto gone = files.removeItem(folder / "real");
    ASSERT_FALSE(gone);
    EXPECT_EQ(gone.error().domain, PlatformError::Domain::cocoa);
    EXPECT_EQ(gone.error().code, FileManagerClient::kNoSuchFile);
}

TEST(BundleFilesMacOS, SwapTheNewForTheOldAndLeaveNothing) {
    const TemporaryFolder folder;
    const BundleFiles files = makeLiveBundleFiles();
    const auto place = folder / "installed" / "The.app";
    for (const char* version : {"1", "2"}) {
        folder.write(std::string{version} + "/The.app/Contents/version", version);
        const auto staged = files.stage(folder / version / "The.app", place.parent_path());
        ASSERT_TRUE(staged);
        ASSERT_TRUE(files.putInPlace(*staged, place));
        EXPECT_EQ(folder.read("installed/The.app/Contents/version"), version);
    }
    files.discardStaged(place.parent_path());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator{place.parent_path()}, {}), 1);
}

// The type of a value matters: a removal flag is a boolean, not a number.
TEST(UserDefaultsMacOS, KeepTypesAndForgetTheirDomain) {
    const std::string suite = "example.quillon.Quorvane.Tests." + std::to_string(getpid());
    const auto defaults = openSuiteMacOS(suite);
    ASSERT_TRUE(defaults);
    const PropertyDictionary values{{"flag", {true}},
                                    {"number", {std::int64_t{1}}},
                                    {"real", {1.5}},
                                    {"text", {std::string{"é"}}},
                                    {"list", {PropertyArray{{std::int64_t{2}}, {false}}}}};
    for (const auto& [key, value] : values) defaults->set(key, value);
    for (const auto& [key, value] : values) EXPECT_EQ(defaults->get(key), value) << key;
    EXPECT_TRUE(defaults->synchronize());
    defaults->set("text", std::nullopt);
    EXPECT_EQ(defaults->get("text"), std::nullopt);
    defaults->removeDomain();
    EXPECT_EQ(defaults->get("flag"), std::nullopt);
}

TEST(RandomnessMacOS, IsNotTheSameTwice) {
    std::array<std::byte, 32> first{};
    std::array<std::byte, 32> second{};
    ASSERT_TRUE(makeFillRandomMacOS()(first));
    ASSERT_TRUE(makeFillRandomMacOS()(second));
    EXPECT_NE(first, second);
    EXPECT_EQ(makeUUIDMacOS().size(), 36U);
    EXPECT_EQ(makeUUIDMacOS()[14], '4');
}

}  // namespace
}  // namespace quorvane
