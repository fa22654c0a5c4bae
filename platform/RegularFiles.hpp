// Files that others name: artwork that a player points to, a script that a user gives. Whatever
// stands at the path, reading it neither hangs on a pipe or a device nor takes more than the limit.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

#include "platform/Bytes.hpp"
#include "platform/PlatformError.hpp"

namespace quorvane {

// Changes whenever a file's contents may have changed.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t file = 0;
    std::uint64_t size = 0;
    std::int64_t modifiedNanoseconds = 0;
    bool operator==(const FileStamp&) const = default;
};

struct StampedFile {
    FileStamp stamp{};
    Bytes contents{};
};

// Any thread. Both follow symbolic links and fail for everything but a regular file.
struct RegularFiles {
    std::function<Result<FileStamp>(const std::filesystem::path&)> stamp;
    // Fails as well when the file is larger than `limit` bytes, also when it grows while it is
    // read.
    std::function<Result<StampedFile>(const std::filesystem::path&, std::uint64_t limit)> read;
};

RegularFiles makeLiveRegularFiles();

}  // namespace quorvane
