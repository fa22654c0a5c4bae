#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "platform/RegularFiles.hpp"
#include "platform/macos/files/FilesMacOS.hpp"

namespace quorvane {

std::unexpected<PlatformError> posixErrorMacOS(const std::filesystem::path& path, int code) {
    return std::unexpected{
        PlatformError{.domain = PlatformError::Domain::posix,
                      .code = code,
                      .description = path.native() + ": " + std::strerror(code)}};
}

namespace {

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

Result<FileStamp> stampFrom(const struct stat& status, const std::filesystem::path& path) {
    if (!S_ISREG(status.st_mode))
        return posixErrorMacOS(path, S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    return FileStamp{.device = static_cast<std::uint64_t>(status.st_dev),
                     .file = status.st_ino,
                     .size = static_cast<std::uint64_t>(status.st_size),
                     .modifiedNanoseconds =
                         status.st_mtimespec.tv_sec * 1'000'000'000 + status.st_mtimespec.tv_nsec};
}

Result<FileStamp> stampOf(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return posixErrorMacOS(path, errno);
    return stampFrom(status, path);
}

// Reads up to `limit` bytes and one more, which shows that the file is larger.
Result<Bytes> readUpTo(int file, std::uint64_t limit, const std::filesystem::path& path) {
    constexpr std::size_t kStep = 1 << 16;
    Bytes contents;
    while (contents.size() <= limit) {
        const std::size_t filled = contents.size();
        contents.resize(filled + kStep);
        const ssize_t count = ::read(file, contents.data() + filled, kStep);
        contents.resize(filled + static_cast<std::size_t>(count > 0 ? count : 0));
        if (count == 0) return contents;
        if (count < 0 && errno != EINTR) return posixErrorMacOS(path, errno);
    }
    return posixErrorMacOS(path, EFBIG);
}

Result<StampedFile> readFile(const std::filesystem::path& path, std::uint64_t limit) {
    const OpenFile file{path};
    struct stat status {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0) return posixErrorMacOS(path, errno);
    const auto stamp = stampFrom(status, path);
    if (!stamp) return std::unexpected{stamp.error()};
    auto contents = readUpTo(file.get(), limit, path);
    if (!contents) return std::unexpected{std::move(contents).error()};
    return StampedFile{.stamp = *stamp, .contents = *std::move(contents)};
}

}  // namespace

RegularFiles makeLiveRegularFiles() { return {.stamp = stampOf, .read = readFile}; }

}  // namespace quorvane
