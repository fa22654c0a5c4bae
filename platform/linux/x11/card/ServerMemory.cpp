#include "platform/linux/x11/card/ServerMemory.hpp"

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
    auto memory = SharedMemory::make(size);
    if (!memory) return nullptr;
    const xcb_shm_seg_t segment = xcb_generate_id(connection);
    // Takes ownership of the descriptor, even on failure.
    const auto request =
        xcb_shm_attach_fd_checked(connection, segment, memory->file().release(), false);
    const XcbReply<xcb_generic_error_t> error{xcb_request_check(connection, request)};
    if (error) return nullptr;
    return std::unique_ptr<ServerMemory>{new ServerMemory{connection, std::move(memory), segment}};
}

}  // namespace quorvane
