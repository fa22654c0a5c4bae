#include "platform/linux/card/SharedMemory.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace quorvane {

std::unique_ptr<SharedMemory> SharedMemory::make(std::size_t size) {
    FileDescriptor file{memfd_create("quorvane-card", MFD_CLOEXEC | MFD_ALLOW_SEALING)};
    if (!file || ftruncate(file.get(), static_cast<off_t>(size)) != 0) return nullptr;
    // The other process then knows that its reads cannot fail.
    fcntl(file.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_SEAL);
    void* const data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file.get(), 0);
    if (data == MAP_FAILED) return nullptr;
    return std::unique_ptr<SharedMemory>{
        new SharedMemory{std::move(file), static_cast<std::byte*>(data), size}};
}

SharedMemory::~SharedMemory() { munmap(data_, size_); }

}  // namespace quorvane
