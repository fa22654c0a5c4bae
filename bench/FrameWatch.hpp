// Records every frame that any program draws on a screen, with its time.
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
    int width = 0;  // of the drawn area, pixels
    int height = 0;
};

// The server reports each drawing after it is done.
class FrameWatch {
public:
    explicit FrameWatch(const std::string& display);
    FrameWatch(const FrameWatch&) = delete;
    FrameWatch& operator=(const FrameWatch&) = delete;
    ~FrameWatch() { xcb_disconnect(connection_); }

    // All frames until the deadline.
    std::vector<Frame> watch(std::chrono::steady_clock::time_point until);

    // Sets the pixels per inch for programs that start later.
    static void setDotsPerInch(const std::string& display, int dots);

private:
    xcb_connection_t* connection_;
    std::uint8_t firstEvent_ = 0;
};

}  // namespace quorvane
