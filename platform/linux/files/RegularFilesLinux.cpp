#include "platform/RegularFiles.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

Result<FileStamp> stampOf(const struct stat& status, const std::filesystem::path& path) {
    if (S_ISDIR(status.st_mode)) return posixError(path, EISDIR);
    if (!S_ISREG(status.st_mode))
        return std::unexpected{PlatformError{.domain = PlatformError::Domain::posix,
                                             .code = EINVAL,
                                             .description = path.string() + ": not a plain file"}};
    return FileStamp{
        .device = status.st_dev,
        .file = status.st_ino,
        .size = static_cast<std::uint64_t>(status.st_size),
        .modifiedNanoseconds = status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec};
}

Result<FileStamp> stampOfPath(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return posixError(path);
    return stampOf(status, path);
}

Result<StampedFile> readFile(const std::filesystem::path& path, std::uint64_t limit) {
    // O_NONBLOCK, because opening a pipe would wait for its other end.
    const FileDescriptor file{open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)};
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) return posixError(path);
    const auto stamp = stampOf(status, path);
    if (!stamp) return std::unexpected{stamp.error()};
    if (stamp->size > limit) return posixError(path, EFBIG);

    StampedFile result{.stamp = *stamp, .contents = {}};
    // One byte more than the stated size, because files of /proc report 0 and contain more.
    std::uint64_t capacity = stamp->size + 1;
    std::uint64_t filled = 0;
    while (true) {
        result.contents.resize(capacity);
        const ssize_t count =
            ::read(file.get(), result.contents.data() + filled, capacity - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return posixError(path);
        filled += static_cast<std::uint64_t>(count);
        if (filled > limit) return posixError(path, EFBIG);
        if (count == 0) break;
        if (filled == capacity) capacity = std::min(limit + 1, capacity * 2 + 4096);
    }
    result.contents.resize(filled);
    return result;
}

}  // namespace

RegularFiles makeLiveRegularFiles() { return {.stamp = stampOfPath, .read = readFile}; }

}  // namespace quorvane
