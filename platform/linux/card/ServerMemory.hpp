// Memory that the X server reads and writes straight, beside this process.
#pragma once

#include <xcb/shm.h>
#include <xcb/xcb.h>

#include <cstddef>
#include <memory>

namespace quorvane {

// Main thread only. The server keeps it for as long as requests that name the segment are under
// way.
class ServerMemory {
public:
    // Null where the server does not share memory by descriptors: one on another machine, or an old
    // one. Zeroed.
    static std::unique_ptr<ServerMemory> make(xcb_connection_t* connection, std::size_t size);
    ~ServerMemory();
    ServerMemory(const ServerMemory&) = delete;
    ServerMemory& operator=(const ServerMemory&) = delete;

    xcb_shm_seg_t segment() const { return segment_; }
    std::byte* data() const { return data_; }

private:
    ServerMemory(xcb_connection_t* connection, std::byte* data, std::size_t size)
        : connection_(connection), data_(data), size_(size) {}
    bool attach(int descriptor);

    xcb_connection_t* connection_;
    std::byte* data_;
    std::size_t size_;
    xcb_shm_seg_t segment_ = XCB_NONE;
};

}  // namespace quorvane
