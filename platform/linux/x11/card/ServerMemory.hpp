// Memory shared by this process and the X server.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstddef>
#include <memory>
#include <utility>

#include "platform/linux/card/SharedMemory.hpp"

namespace quorvane {

// Main thread only. The server keeps it while requests that name the segment are pending.
class ServerMemory {
public:
    // Zeroed memory. Returns null where the server cannot share memory by file descriptor: a remote
    // server or an old one.
    static std::unique_ptr<ServerMemory> make(xcb_connection_t* connection, std::size_t size);
    ~ServerMemory() { xcb_shm_detach(connection_, segment_); }
    ServerMemory(const ServerMemory&) = delete;
    ServerMemory& operator=(const ServerMemory&) = delete;

    xcb_shm_seg_t segment() const { return segment_; }
    std::byte* data() const { return memory_->data(); }

private:
    ServerMemory(xcb_connection_t* connection, std::unique_ptr<SharedMemory> memory,
                 xcb_shm_seg_t segment)
        : connection_(connection), memory_(std::move(memory)), segment_(segment) {}

    xcb_connection_t* connection_;
    std::unique_ptr<SharedMemory> memory_;
    xcb_shm_seg_t segment_;
};

}  // namespace quorvane
