// Part of both editions, compiled with the files of each.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/RegularFiles.hpp"

namespace quorvane {
namespace {

std::unexpected<PlatformError> failed(const std::filesystem::path& path, int code,
                                      const char* reason) {
    return std::unexpected{PlatformError{.domain = PlatformError::Domain::posix,
                                         .code = code,
                                         .description = path.native() + ": " + reason}};
}
std::unexpected<PlatformError> failed(const std::filesystem::path& path, int code = errno) {
    return failed(path, code, std::strerror(code));
}

class OpenFile {
public:
    // O_NONBLOCK, because opening a pipe would wait for its other end.
    explicit OpenFile(const std::filesystem::path& path)
        : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor_ >= 0) close(descriptor_);
    }

    int get() const { return descriptor_; }

private:
    const int descriptor_;
};

// A template, because the systems name the field differently.
template <typename Status>
timespec modifiedTime(const Status& status) {
    if constexpr (requires { status.st_mtimespec; })
        return status.st_mtimespec;
    else
        return status.st_mtim;
}

Result<FileStamp> stampFrom(const struct stat& status, const std::filesystem::path& path) {
    if (S_ISDIR(status.st_mode)) return failed(path, EISDIR);
    if (!S_ISREG(status.st_mode)) return failed(path, EINVAL, "not a plain file");
    const timespec modified = modifiedTime(status);
    return FileStamp{.device = static_cast<std::uint64_t>(status.st_dev),
                     .file = status.st_ino,
                     .size = static_cast<std::uint64_t>(status.st_size),
                     .modifiedNanoseconds = modified.tv_sec * 1'000'000'000 + modified.tv_nsec};
}

Result<FileStamp> stampOf(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return failed(path);
    return stampFrom(status, path);
}

Result<StampedFile> readFile(const std::filesystem::path& path, std::uint64_t limit) {
    const OpenFile file{path};
    struct stat status {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0) return failed(path);
    const auto stamp = stampFrom(status, path);
    if (!stamp) return std::unexpected{stamp.error()};
    if (stamp->size > limit) return failed(path, EFBIG);

    StampedFile result{.stamp = *stamp, .contents = {}};
    // One byte more than the stated size, because some files report 0 and contain more.
    std::uint64_t capacity = stamp->size + 1;
    std::uint64_t filled = 0;
    while (true) {
        result.contents.resize(capacity);
        const ssize_t count =
            ::read(file.get(), result.contents.data() + filled, capacity - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return failed(path);
        filled += static_cast<std::uint64_t>(count);
        if (filled > limit) return failed(path, EFBIG);
        if (count == 0) break;
        if (filled == capacity) capacity = std::min(limit + 1, capacity * 2 + 4096);
    }
    result.contents.resize(filled);
    return result;
}

}  // namespace

RegularFiles makeLiveRegularFiles() { return {.stamp = stampOf, .read = readFile}; }

}  // namespace quorvane
