#include "platform/linux/files/FileLock.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

using Deadline = std::chrono::steady_clock::time_point;

// The system offers no lock call with a timeout, so this polls.
constexpr auto kInterval = std::chrono::milliseconds{2};

// 0 or an error number.
int waitForLock(const FileDescriptor& descriptor, Deadline deadline) {
    while (flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return errno;
        if (std::chrono::steady_clock::now() >= deadline) return ETIMEDOUT;
        std::this_thread::sleep_for(kInterval);
    }
    return 0;
}

bool isStillAt(const FileDescriptor& descriptor, const std::filesystem::path& file) {
    struct stat held {};
    struct stat present {};
    return fstat(descriptor.get(), &held) == 0 && stat(file.c_str(), &present) == 0 &&
           held.st_dev == present.st_dev && held.st_ino == present.st_ino;
}

}  // namespace

Result<FileLock> FileLock::acquire(const std::filesystem::path& file, Duration patience) {
    const Deadline deadline = std::chrono::steady_clock::now() + patience;
    while (true) {
        FileDescriptor descriptor{
            open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NOCTTY, 0600)};
        if (!descriptor) return posixError("open " + file.string());
        if (const int code = waitForLock(descriptor, deadline); code != 0)
            return posixError("flock " + file.string(), code);
        // The previous holder may have removed the file; then this lock excludes no other process.
        if (isStillAt(descriptor, file)) return FileLock{file, std::move(descriptor)};
    }
}

void FileLock::removeFile() { unlink(file_.c_str()); }

}  // namespace quorvane
