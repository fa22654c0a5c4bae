// Memory that another process can map by its file.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>

#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {

class SharedMemory {
public:
    // Zeroed; null when memory is short.
    static std::unique_ptr<SharedMemory> make(std::size_t size);
    ~SharedMemory();
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    std::byte* data() const { return data_; }
    // Valid until the caller takes it. The memory stays mapped.
    FileDescriptor& file() { return file_; }

private:
    SharedMemory(FileDescriptor file, std::byte* data, std::size_t size)
        : file_(std::move(file)), data_(data), size_(size) {}

    FileDescriptor file_;
    std::byte* data_;
    std::size_t size_;
};

}  // namespace quorvane
