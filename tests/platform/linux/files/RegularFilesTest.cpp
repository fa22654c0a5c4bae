#include "platform/RegularFiles.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

class RegularFilesTest : public testing::Test {
protected:
    TemporaryFolder folder;
    const RegularFiles files = makeLiveRegularFiles();

    int errorOf(const std::filesystem::path& path, std::uint64_t limit = 100) {
        const auto read = files.read(path, limit);
        EXPECT_FALSE(read);
        EXPECT_TRUE(read || read.error().description.starts_with(path.string()));
        return read ? 0 : read.error().code;
    }
};

TEST_F(RegularFilesTest, ReadsUpToTheLimit) {
    const auto path = folder.write("file", "0123456789");
    const auto file = files.read(path, 10);
    ASSERT_TRUE(file);
    EXPECT_EQ(textOf(file->contents), "0123456789");
    EXPECT_EQ(file->stamp.size, 10u);
    EXPECT_EQ(errorOf(path, 9), EFBIG);
    EXPECT_TRUE(files.read(folder.write("empty", ""), 0)->contents.empty());
    std::filesystem::create_symlink(path, folder / "link");
    EXPECT_EQ(textOf(files.read(folder / "link", 10)->contents), "0123456789");
    // Says that it is empty and is not.
    EXPECT_FALSE(files.read("/proc/self/status", 1 << 20)->contents.empty());
    EXPECT_EQ(errorOf("/proc/self/status", 20), EFBIG);
}

TEST_F(RegularFilesTest, RefusesWhatIsNoPlainFile) {
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorOf(folder / "pipe"), EINVAL) << "and does not wait for a writer";
    EXPECT_EQ(errorOf("/dev/zero"), EINVAL);
    EXPECT_EQ(errorOf(folder.path()), EISDIR);
    EXPECT_EQ(errorOf(folder / "absent"), ENOENT);
    EXPECT_FALSE(files.stamp(folder / "pipe"));
    EXPECT_FALSE(files.stamp(folder / "absent"));
}

TEST_F(RegularFilesTest, TheStampTellsVersionsApart) {
    const auto path = folder.write("file", "one");
    const auto first = files.stamp(path);
    ASSERT_TRUE(first);
    EXPECT_EQ(*first, *files.stamp(path));
    // Another file of the same size at the same place, as an atomic write leaves it.
    std::filesystem::rename(folder.write("new", "two"), path);
    EXPECT_NE(*first, *files.stamp(path));
}

}  // namespace
}  // namespace quorvane
