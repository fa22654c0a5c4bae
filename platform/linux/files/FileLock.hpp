// Lock between processes, backed by its own file.
#pragma once

#include <filesystem>

#include "platform/Clock.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {

// Move-only; released when the object is destroyed or the process ends.
class FileLock {
public:
    // Creates the file if it is missing. Waits while another process holds the lock. Fails with
    // ETIMEDOUT after `patience`, so that a stopped process cannot block this one.
    static Result<FileLock> acquire(const std::filesystem::path& file, Duration patience);

    // Removes the file. Processes that wait for the lock notice this and create a new file.
    void removeFile();

private:
    FileLock(std::filesystem::path file, FileDescriptor descriptor)
        : file_(std::move(file)), descriptor_(std::move(descriptor)) {}

    std::filesystem::path file_;
    FileDescriptor descriptor_;
};

}  // namespace quorvane
