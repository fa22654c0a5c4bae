// A lock between processes, held by way of a file of its own.
#pragma once

#include <filesystem>

#include "platform/Clock.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {

// Move-only; released with its object or its process.
class FileLock {
public:
    // Makes the file when it is missing. Waits while another process holds the lock, and fails with
    // ETIMEDOUT when that takes longer than `patience`: a stopped process must not stop this one.
    static Result<FileLock> acquire(const std::filesystem::path& file, Duration patience);

    // Removes the file. Whoever waits for the lock notices and makes a new one.
    void removeFile();

private:
    FileLock(std::filesystem::path file, FileDescriptor descriptor)
        : file_(std::move(file)), descriptor_(std::move(descriptor)) {}

    std::filesystem::path file_;
    FileDescriptor descriptor_;
};

}  // namespace quorvane
