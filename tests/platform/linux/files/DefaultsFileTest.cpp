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

constexpr char kFile[] = "domain.plist";

struct DefaultsFileTest : testing::Test {
    TemporaryFolder folder;
    RecordingLog recording;
    std::filesystem::path file = folder / "config" / kFile;
    DefaultsFile store{file, {recording.sink(), "subsystem", "defaults"}};
    DefaultsFile otherStore{file, {recording.sink(), "subsystem", "defaults"}};
    UserDefaults defaults = store.table();
    UserDefaults other = otherStore.table();  // as another process has it

    std::filesystem::path writeConfig(std::string_view name, std::string_view contents) {
        return folder.write("config/" + std::string{name}, contents);
    }
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
    // Of the same size, so that only the file itself tells.
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

// Many processes at once, the first of which makes the folder.
TEST_F(DefaultsFileTest, WritersKeepEachOthersKeys) {
    constexpr int kWriters = 4, kKeys = 25;
    std::vector<std::unique_ptr<ForkedChild>> writers;
    for (int writer = 0; writer < kWriters; ++writer)
        writers.push_back(std::make_unique<ForkedChild>([&, writer](const ForkedChild::Say&) {
            for (int key = 0; key < kKeys; ++key)
                defaults.set(std::to_string(writer) + "." + std::to_string(key),
                             PropertyValue{std::int64_t{key}});
            return defaults.synchronize() ? 0 : 1;
        }));
    for (auto& writer : writers) EXPECT_EQ(writer->wait(), 0);
    for (int writer = 0; writer < kWriters; ++writer)
        for (int key = 0; key < kKeys; ++key)
            EXPECT_EQ(defaults.get(std::to_string(writer) + "." + std::to_string(key)),
                      PropertyValue{std::int64_t{key}});
    EXPECT_EQ(namesInConfig(), (std::set<std::string>{kFile, ".domain.plist.lock"}));
}

TEST_F(DefaultsFileTest, TheLockExcludesAlsoWhereItsFileIsRemoved) {
    const auto lockFile = folder / "lock", inside = folder / "inside";
    std::vector<std::unique_ptr<ForkedChild>> children;
    for (int child = 0; child < 4; ++child)
        children.push_back(std::make_unique<ForkedChild>([&](const ForkedChild::Say&) {
            for (int round = 0; round < 300; ++round) {
                auto lock = FileLock::acquire(lockFile, std::chrono::seconds{20});
                const FileDescriptor only{open(inside.c_str(), O_CREAT | O_EXCL | O_CLOEXEC, 0600)};
                if (!lock || !only) return 1;
                unlink(inside.c_str());
                if (round % 2 == 0) lock->removeFile();
            }
            return 0;
        }));
    for (auto& child : children) EXPECT_EQ(child->wait(), 0);
    const auto held = FileLock::acquire(lockFile, {});
    ASSERT_TRUE(held);
    EXPECT_EQ(FileLock::acquire(lockFile, std::chrono::milliseconds{5}).error().code, ETIMEDOUT);
}

TEST_F(DefaultsFileTest, AnUnreadableFileIsKeptAside) {
    writeConfig(kFile, "<plist><dict><key>torn");
    EXPECT_EQ(defaults.get("key"), std::nullopt);
    EXPECT_EQ(defaults.get("other"), std::nullopt);
    defaults.set("absent", std::nullopt);
    EXPECT_EQ(recording.lines().size(), 1u);
    EXPECT_EQ(folder.read("config/domain.plist"), "<plist><dict><key>torn");
    defaults.set("key", PropertyValue{true});
    EXPECT_EQ(folder.read("config/domain.plist.malformed"), "<plist><dict><key>torn");
    EXPECT_EQ(other.get("key"), PropertyValue{true});

    // A list, but no dictionary; and the name is taken.
    writeConfig(kFile, "<plist><array/></plist>");
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
    // A file that cannot even be looked at is not overwritten.
    std::filesystem::remove(file);
    std::filesystem::create_directory(file);
    defaults.set("key", PropertyValue{false});
    EXPECT_TRUE(std::filesystem::is_directory(file));
    EXPECT_EQ(recording.take().size(), 1u);
}

TEST_F(DefaultsFileTest, AValueThatNoFileHoldsHoldsUpNoOther) {
    defaults.set("text", PropertyValue{std::string("a\0b", 3)});
    defaults.set("date", PropertyValue{kDistantPast});
    EXPECT_EQ(recording.take().size(), 2u);
    EXPECT_EQ(defaults.get("text"), std::nullopt);
    defaults.set("key", PropertyValue{true});
    EXPECT_EQ(other.get("key"), PropertyValue{true});
    EXPECT_TRUE(recording.take().empty());
}

}  // namespace
}  // namespace quorvane
