// Reader of files at untrusted paths, such as artwork that a player points to or a script that a
// user names. Reading never hangs on a pipe or device and never exceeds the limit.
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

// Any thread. Both operations follow symbolic links and fail for anything but a regular file.
struct RegularFiles {
    std::function<Result<FileStamp>(const std::filesystem::path&)> stamp;
    // Also fails when the file is larger than `limit` bytes, or grows beyond it during the read.
    std::function<Result<StampedFile>(const std::filesystem::path&, std::uint64_t limit)> read;
};

RegularFiles makeLiveRegularFiles();

}  // namespace quorvane
