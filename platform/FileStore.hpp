// File operations of the link: the shared container and whole files in it.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "platform/Bytes.hpp"
#include "platform/PlatformError.hpp"

namespace quorvane {

// Any thread.
struct FileStore {
    // The folder that the applications of a group share; nullopt when it cannot be found or
    // created.
    std::function<std::optional<std::filesystem::path>(const std::string& group)> containerOfGroup;
    std::function<Result<Bytes>(const std::filesystem::path&)> read;
    // Replaces the contents atomically: a reader sees the old or the new contents, never a mixture.
    // Only the owner can read the file.
    std::function<Result<void>(const std::filesystem::path&, ByteView)> writeAtomically;
    // The same for a new file. An existing file keeps its contents, and that is not a failure: of
    // several writers the first wins.
    std::function<Result<void>(const std::filesystem::path&, ByteView)> createAtomically;
};

// Fills the buffer with random bytes that are fit for a secret. The error is the system's status
// number, never 0.
using FillRandom = std::function<std::expected<void, int>(std::span<std::byte>)>;

}  // namespace quorvane
