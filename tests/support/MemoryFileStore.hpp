// The application group's files in memory, which a test may remove.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <optional>

#include "platform/FileStore.hpp"

namespace quorvane {

struct MemoryFileStore {
    std::map<std::filesystem::path, Bytes> files;
    std::optional<std::filesystem::path> container = "/container";
    std::optional<std::string> writeFailure{};
    std::function<void()> beforeWrite{};  // simulates another process that changes the files

    FileStore table() {
        FileStore store;
        store.containerOfGroup = [this](const std::string& group) {
            EXPECT_EQ(group, "group.example.quillon.Quorvane");
            return container;
        };
        store.read = [this](const std::filesystem::path& path) -> Result<Bytes> {
            if (const auto file = files.find(path); file != files.end()) return file->second;
            return std::unexpected{PlatformError{.code = 2, .description = "missing"}};
        };
        const auto writer = [this](bool replaces) {
            return [this, replaces](const auto& path, ByteView bytes) -> Result<void> {
                if (writeFailure)
                    return std::unexpected{PlatformError{.code = 28, .description = *writeFailure}};
                if (beforeWrite) beforeWrite();
                if (replaces || !files.contains(path)) files[path] = copyOf(bytes);
                return {};
            };
        };
        store.writeAtomically = writer(true);
        store.createAtomically = writer(false);
        return store;
    }
};

}  // namespace quorvane
