#include "platform/linux/x11/card/ServerMemory.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include "platform/linux/x11/XcbReply.hpp"
#include "platform/linux/x11/card/CardRequests.hpp"

namespace quorvane {
namespace {

bool sharesMemoryByDescriptor(xcb_connection_t* connection) {
    if (!presentExtension(connection, xcb_shm_id)) return false;
    const auto version =
        xcbReply(xcb_shm_query_version_reply, connection, xcb_shm_query_version(connection));
    return version && (version->major_version > 1 || version->minor_version >= 2);
}

}  // namespace

std::unique_ptr<ServerMemory> ServerMemory::make(xcb_connection_t* connection, std::size_t size) {
    if (!sharesMemoryByDescriptor(connection)) return nullptr;
    const int descriptor = memfd_create("card window", MFD_CLOEXEC);
    if (descriptor < 0) return nullptr;
    void* data = MAP_FAILED;
    if (ftruncate(descriptor, static_cast<off_t>(size)) == 0)
        data = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
    if (data == MAP_FAILED) {
        close(descriptor);
        return nullptr;
    }
    std::unique_ptr<ServerMemory> memory{
        new ServerMemory{connection, static_cast<std::byte*>(data), size}};
    return memory->attach(descriptor) ? std::move(memory) : nullptr;
}

ServerMemory::~ServerMemory() {
    if (segment_ != XCB_NONE) xcb_shm_detach(connection_, segment_);
    munmap(data_, size_);
}

bool ServerMemory::attach(int descriptor) {
    const xcb_shm_seg_t segment = xcb_generate_id(connection_);
    // Takes ownership of the descriptor, even on failure.
    const auto request = xcb_shm_attach_fd_checked(connection_, segment, descriptor, false);
    const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection_, request)};
    if (error) return false;
    segment_ = segment;
    return true;
}

}  // namespace quorvane
