// Sees every frame that any program brings onto a screen, with the moment at which it came.
#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace quorvane {

struct Frame {
    std::chrono::steady_clock::time_point time;
    int width = 0;  // of what was drawn, pixels
    int height = 0;
};

// The server tells of each drawing after it has done it.
class FrameWatch {
public:
    explicit FrameWatch(const std::string& display);
    FrameWatch(const FrameWatch&) = delete;
    FrameWatch& operator=(const FrameWatch&) = delete;
    ~FrameWatch() { xcb_disconnect(connection_); }

    // All that come until the deadline.
    std::vector<Frame> watch(std::chrono::steady_clock::time_point until);

    // Tells programs that start from now on how many pixels an inch has.
    static void setDotsPerInch(const std::string& display, int dots);

private:
    xcb_connection_t* connection_;
    std::uint8_t firstEvent_ = 0;
};

}  // namespace quorvane
