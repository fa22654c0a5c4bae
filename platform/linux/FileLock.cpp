#include "platform/linux/FileLock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "platform/linux/PosixError.hpp"

namespace quorvane {
namespace {

// The system has no wait for a lock that ends by itself.
constexpr auto kInterval = std::chrono::milliseconds{2};

bool isStillAt(const FileDescriptor& descriptor, const std::filesystem::path& file) {
    struct stat held {};
    struct stat standing {};
    return fstat(descriptor.get(), &held) == 0 && stat(file.c_str(), &standing) == 0 &&
           held.st_dev == standing.st_dev && held.st_ino == standing.st_ino;
}

}  // namespace

Result<FileLock> FileLock::acquire(const std::filesystem::path& file, Duration patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        FileDescriptor descriptor{
            open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, 0600)};
        if (!descriptor) return posixError("open " + file.string());
        const bool isHeld = flock(descriptor.get(), LOCK_EX | LOCK_NB) == 0;
        if (!isHeld && errno != EWOULDBLOCK && errno != EINTR)
            return posixError("flock " + file.string());
        // The one before may have removed the file: then this lock excludes nobody.
        if (isHeld && isStillAt(descriptor, file)) return FileLock{file, std::move(descriptor)};
        if (std::chrono::steady_clock::now() >= deadline)
            return posixError("flock " + file.string(), ETIMEDOUT);
        if (!isHeld) std::this_thread::sleep_for(kInterval);
    }
}

void FileLock::removeFile() { unlink(file_.c_str()); }

}  // namespace quorvane
