#include <gtest/gtest.h>
#include <sys/stat.h>

#include <regex>
#include <set>

#include "platform/RegularFiles.hpp"
#include "platform/linux/files/BundleLayout.hpp"
#include "platform/linux/files/FilesLinux.hpp"
#include "platform/linux/files/FoldersLinux.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

constexpr char kGroup[] = "group.example.quillon.Quorvane";

struct FilesTest : testing::Test {
    TemporaryFolder folder;
    FileStore files = makeFileStore();
    const RegularFiles regular = makeLiveRegularFiles();

    FilesTest() {
        setenv("HOME", (folder / "home").c_str(), 1);
        unsetenv("XDG_DATA_HOME");
        unsetenv("XDG_CONFIG_HOME");
    }
    std::filesystem::path standardContainer() const {
        return folder / "home/.local/share" / kGroup;
    }
    int errorOf(const std::filesystem::path& path, std::uint64_t limit = 100) {
        const auto read = regular.read(path, limit);
        EXPECT_TRUE(read || read.error().description.starts_with(path.string()));
        return read ? 0 : read.error().code;
    }
};

TEST_F(FilesTest, FoldersFollowTheStandard) {
    EXPECT_EQ(configFolder(), folder / "home/.config");
    EXPECT_EQ(dataFolder(), folder / "home/.local/share");
    for (const char* unset : {"", "relative/path"}) {
        setenv("XDG_CONFIG_HOME", unset, 1);
        EXPECT_EQ(configFolder(), folder / "home/.config");
    }
    setenv("XDG_CONFIG_HOME", "/elsewhere", 1);
    EXPECT_EQ(configFolder(), "/elsewhere");
    setenv("HOME", "relative", 1);
    EXPECT_TRUE(dataFolder()->is_absolute());  // as the user's entry says
}

TEST_F(FilesTest, AContainerIsPrivate) {
    const mode_t before = umask(0);
    EXPECT_EQ(files.containerOfGroup(kGroup), standardContainer());
    umask(before);
    EXPECT_EQ(modeOf(standardContainer()), 0700);
    EXPECT_EQ(modeOf(folder / "home/.local"), 0700);
    std::filesystem::permissions(standardContainer(), std::filesystem::perms{0755});
    EXPECT_EQ(files.containerOfGroup(kGroup), standardContainer());
    EXPECT_EQ(modeOf(standardContainer()), 0700);
    setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    EXPECT_EQ(files.containerOfGroup(kGroup), folder / "data" / kGroup);
    for (const char* name : {"", "..", "a/b", "/etc", ".hidden"})
        EXPECT_EQ(files.containerOfGroup(name), std::nullopt);
}

TEST_F(FilesTest, AContainerThatOthersMayOwnIsRefused) {
    const auto elsewhere = folder / "elsewhere";
    std::filesystem::create_directories(elsewhere);
    std::filesystem::create_directories(standardContainer().parent_path());
    std::filesystem::create_directory_symlink(elsewhere, standardContainer());
    EXPECT_EQ(files.containerOfGroup(kGroup), std::nullopt);
    std::filesystem::remove(standardContainer());
    folder.write("home/.local/share/" + std::string{kGroup}, "a file");
    EXPECT_EQ(files.containerOfGroup(kGroup), std::nullopt);
    if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder to another user";
    std::filesystem::remove(standardContainer());
    std::filesystem::create_directory(standardContainer());
    ASSERT_EQ(chown(standardContainer().c_str(), 65534, 65534), 0);
    EXPECT_EQ(files.containerOfGroup(kGroup), std::nullopt);
}

TEST_F(FilesTest, FilesAreReplacedWholeAndPrivate) {
    const auto file = folder.write("secret", "old");
    std::filesystem::permissions(file, std::filesystem::perms{0644});
    std::ifstream reader{file};
    EXPECT_TRUE(files.writeAtomically(file, bytesOf("new")));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>{reader}, {}), "old") << "not mixed";
    EXPECT_EQ(modeOf(file), 0600);
    EXPECT_EQ(textOf(*files.read(file)), "new");
    EXPECT_TRUE(files.createAtomically(file, bytesOf("late")));
    EXPECT_EQ(textOf(*files.read(file)), "new") << "the first writer wins";
    std::filesystem::remove(file);
    EXPECT_TRUE(files.createAtomically(file, {}));
    EXPECT_EQ(files.read(file)->size(), 0u);
    EXPECT_EQ(modeOf(file), 0600);

    const auto missing = folder / "missing";
    EXPECT_EQ(files.read(missing).error().code, ENOENT);
    EXPECT_EQ(files.read(folder.path()).error().code, EISDIR);
    EXPECT_EQ(files.writeAtomically(missing / "file", bytesOf("x")).error().code, ENOENT);
    EXPECT_EQ(files.createAtomically(missing / "file", bytesOf("x")).error().code, ENOENT);
    std::filesystem::create_directories(missing);
    EXPECT_FALSE(files.writeAtomically(missing, bytesOf("x")));
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator{folder.path()})
        names.insert(entry.path().filename());
    EXPECT_EQ(names, (std::set<std::string>{"missing", "secret"}));  // no leftovers
}

TEST_F(FilesTest, RandomBytesAndIdentifiers) {
    // More than one call to the system returns.
    Bytes bytes(1 << 20, std::byte{0});
    EXPECT_TRUE(makeFillRandom()(bytes));
    std::set<std::byte> tail(bytes.end() - 4096, bytes.end());
    EXPECT_GT(tail.size(), 200u);
    const std::regex form{"[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"};
    EXPECT_TRUE(std::regex_match(makeRandomUUID(), form));
    EXPECT_NE(makeRandomUUID(), makeRandomUUID());
}

TEST_F(FilesTest, ABundleIsKnownByItsLayout) {
    EXPECT_EQ(bundleOfExecutable("/a/Some App.app/Contents/Linux/program"), "/a/Some App.app");
    for (const char* path : {"/a/b.app/Contents/MacOS/x", "/a/b/Contents/Linux/x", "/x", "",
                             "/a/b.app/Resources/Linux/x"})
        EXPECT_EQ(bundleOfExecutable(path), "") << path;
    folder.write("b.app/Contents/Info.plist",
                 "<plist><dict><key>CFBundleShortVersionString</key><string>1.2.3</string>"
                 "</dict></plist>");
    EXPECT_EQ(propertiesOfBundle(folder / "b.app"),
              (PropertyDictionary{{"CFBundleShortVersionString", {std::string{"1.2.3"}}}}));
    folder.write("b.app/Contents/Info.plist", "<plist><array/></plist>");
    EXPECT_TRUE(propertiesOfBundle(folder / "b.app").empty());
    EXPECT_TRUE(propertiesOfBundle("").empty());
}

TEST_F(FilesTest, RegularFilesAreReadUpToTheLimit) {
    const auto path = folder.write("file", "0123456789");
    EXPECT_EQ(textOf(regular.read(path, 10).value().contents), "0123456789");
    EXPECT_EQ(errorOf(path, 9), EFBIG);
    EXPECT_TRUE(regular.read(folder.write("empty", ""), 0)->contents.empty());
    std::filesystem::create_symlink(path, folder / "link");
    EXPECT_EQ(textOf(regular.read(folder / "link", 10)->contents), "0123456789");
    // A file whose size is 0 although it has contents.
    EXPECT_FALSE(regular.read("/proc/self/status", 1 << 20)->contents.empty());
    EXPECT_EQ(errorOf("/proc/self/status", 20), EFBIG);
}

TEST_F(FilesTest, RefusesWhatIsNoPlainFile) {
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(errorOf(folder / "pipe"), EINVAL) << "and does not wait for a writer";
    EXPECT_EQ(errorOf("/dev/zero"), EINVAL);
    EXPECT_EQ(errorOf(folder.path()), EISDIR);
    EXPECT_EQ(errorOf(folder / "absent"), ENOENT);
    EXPECT_FALSE(regular.stamp(folder / "pipe"));
    EXPECT_FALSE(regular.stamp(folder / "absent"));
}

TEST_F(FilesTest, TheStampTellsVersionsApart) {
    const auto path = folder.write("file", "one");
    const FileStamp first = regular.stamp(path).value();
    EXPECT_EQ(first.size, 3u);
    EXPECT_EQ(first, regular.stamp(path));
    // Another file of the same size and name, as after an atomic write.
    std::filesystem::rename(folder.write("new", "two"), path);
    EXPECT_NE(first, regular.stamp(path));
}

}  // namespace
}  // namespace quorvane
