#include "platform/linux/files/DefaultsFile.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <optional>
#include <set>

#include "platform/linux/files/FileLock.hpp"
#include "tests/support/ForkedChild.hpp"
#include "tests/support/RecordingLog.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

struct DefaultsFileTest : testing::Test {
    TemporaryFolder folder;
    RecordingLog recording;
    std::filesystem::path file = folder / "config/domain.plist";
    DefaultsFile store{file, {recording.sink(), "subsystem", "defaults"}};
    DefaultsFile otherStore{file, {recording.sink(), "subsystem", "defaults"}};
    UserDefaults defaults = store.table();
    UserDefaults other = otherStore.table();  // a second process's view of the file

    std::set<std::string> namesInConfig() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator{folder / "config"})
            names.insert(entry.path().filename());
        return names;
    }
};

TEST_F(DefaultsFileTest, WritesAreSeenHereAtOnceAndThereAtTheNextLook) {
    EXPECT_EQ(other.get("key"), std::nullopt);
    defaults.set("key", PropertyValue{true});
    defaults.set("number", PropertyValue{std::int64_t{1}});
    EXPECT_EQ(defaults.get("key"), PropertyValue{true});
    EXPECT_EQ(other.get("key"), PropertyValue{true});
    EXPECT_EQ(other.get("number"), PropertyValue{std::int64_t{1}});
    // Of the same size, so that the change does not show in the length.
    other.set("number", PropertyValue{std::int64_t{2}});
    EXPECT_EQ(defaults.get("number"), PropertyValue{std::int64_t{2}});
    other.set("key", std::nullopt);
    EXPECT_EQ(defaults.get("key"), std::nullopt);
    EXPECT_EQ(modeOf(file), 0600);
    EXPECT_EQ(modeOf(file.parent_path()), 0700);
    EXPECT_EQ(modeOf(folder / "config" / ".domain.plist.lock"), 0600);

    EXPECT_EQ(defaults.getTogether({"absent", "number"}),
              (PropertyDictionary{{"number", PropertyValue{std::int64_t{2}}}}));

    defaults.removeDomain();
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(defaults.get("number"), std::nullopt);
    EXPECT_EQ(other.get("number"), std::nullopt);
    EXPECT_EQ(namesInConfig(), std::set<std::string>{});
    EXPECT_TRUE(recording.lines().empty());
}

// Processes that run at once; each ends with status 0.
void inFourProcesses(const std::function<bool(int process)>& body) {
    std::vector<std::unique_ptr<ForkedChild>> children;
    for (int process = 0; process < 4; ++process)
        children.push_back(std::make_unique<ForkedChild>(
            [&, process](const ForkedChild::Say&) { return body(process) ? 0 : 1; }));
    for (const auto& child : children) EXPECT_EQ(child->wait(), 0);
}

// The first process makes the folder.
TEST_F(DefaultsFileTest, WritersKeepEachOthersKeys) {
    const auto keyOf = [](int process, int number) {
        return std::to_string(process * 25 + number);
    };
    inFourProcesses([&](int process) {
        for (int number = 0; number < 25; ++number)
            defaults.set(keyOf(process, number), PropertyValue{true});
        return defaults.synchronize().has_value();
    });
    for (int number = 0; number < 100; ++number)
        EXPECT_EQ(defaults.get(keyOf(0, number)), PropertyValue{true});
    EXPECT_EQ(namesInConfig(), (std::set<std::string>{"domain.plist", ".domain.plist.lock"}));
}

TEST_F(DefaultsFileTest, TheLockExcludesAlsoWhereItsFileIsRemoved) {
    const auto lockFile = folder / "lock", inside = folder / "inside";
    inFourProcesses([&](int) {
        for (int round = 0; round < 300; ++round) {
            auto lock = FileLock::acquire(lockFile, std::chrono::seconds{20});
            const FileDescriptor only{open(inside.c_str(), O_CREAT | O_EXCL | O_CLOEXEC, 0600)};
            if (!lock || !only) return false;
            unlink(inside.c_str());
            if (round % 2 == 0) lock->removeFile();
        }
        return true;
    });
    const auto held = FileLock::acquire(lockFile, {});
    ASSERT_TRUE(held);
    EXPECT_EQ(FileLock::acquire(lockFile, std::chrono::milliseconds{5}).error().code, ETIMEDOUT);
}

TEST_F(DefaultsFileTest, AnUnreadableFileIsKeptAside) {
    folder.write("config/domain.plist", "<plist><dict><key>torn");
    EXPECT_EQ(defaults.get("key"), std::nullopt);
    EXPECT_EQ(defaults.get("other"), std::nullopt);
    defaults.set("absent", std::nullopt);
    EXPECT_EQ(recording.lines().size(), 1u);
    EXPECT_EQ(folder.read("config/domain.plist"), "<plist><dict><key>torn");
    defaults.set("key", PropertyValue{true});
    EXPECT_EQ(folder.read("config/domain.plist.malformed"), "<plist><dict><key>torn");
    EXPECT_EQ(other.get("key"), PropertyValue{true});

    // A valid list instead of a dictionary, while the first name for malformed files is taken.
    folder.write("config/domain.plist", "<plist><array/></plist>");
    other.set("key", PropertyValue{false});
    EXPECT_EQ(folder.read("config/domain.plist.malformed"), "<plist><dict><key>torn");
    EXPECT_EQ(folder.read("config/domain.plist.malformed.2"), "<plist><array/></plist>");
    EXPECT_EQ(defaults.get("key"), PropertyValue{false});
}

TEST_F(DefaultsFileTest, WhatCannotBeWrittenIsKeptAndTriedAgain) {
    folder.write("config", "a file in the folder's place");
    defaults.set("key", PropertyValue{true});
    EXPECT_EQ(defaults.get("key"), PropertyValue{true});
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(recording.take().size(), 1u);
    std::filesystem::remove(folder / "config");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(other.get("key"), PropertyValue{true});
    // A file that cannot be read is not overwritten.
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    defaults.set("key", PropertyValue{false});
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_EQ(recording.take().size(), 1u);
    std::filesystem::remove(file);
    // A value that cannot be stored does not prevent storing others.
    defaults.set("date", PropertyValue{kDistantPast});
    EXPECT_EQ(recording.take().size(), 1u);
    EXPECT_EQ(defaults.get("date"), std::nullopt);
    defaults.set("key", PropertyValue{true});
    EXPECT_EQ(other.get("key"), PropertyValue{true});
    EXPECT_TRUE(recording.take().empty());
}

}  // namespace
}  // namespace quorvane
