// The few file operations of the link: the shared container and whole files in it.
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
    // The folder that the applications of a group share; nothing when it cannot be located or made.
    std::function<std::optional<std::filesystem::path>(const std::string& group)> containerOfGroup;
    std::function<Result<Bytes>(const std::filesystem::path&)> read;
    // Old or new contents stand there at any moment, never a mixture. The file is readable by its
    // owner only.
    std::function<Result<void>(const std::filesystem::path&, ByteView)> writeAtomically;
    // The same for a new file. One that exists keeps its contents, which is not a failure: of
    // several writers the first one wins.
    std::function<Result<void>(const std::filesystem::path&, ByteView)> createAtomically;
};

// Fills the buffer with random bytes fit for a secret; otherwise the system's status number, never
// 0.
using FillRandom = std::function<std::expected<void, int>(std::span<std::byte>)>;

}  // namespace quorvane
