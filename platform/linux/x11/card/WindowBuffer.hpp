// The pixels of a card window, in memory shared with the X server.
#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <memory>
#include <span>

#include "drawing/pictures/Pixels.hpp"
#include "platform/linux/drawing/CairoHandles.hpp"
#include "platform/linux/x11/card/ServerMemory.hpp"

namespace quorvane {

// Main thread only. Without shared memory (a remote server) the pixels are sent through the
// connection. Requests about a destroyed window have no effect.
class WindowBuffer {
public:
    // Returns null when memory is short. `depth` is the window's, 24 or 32.
    static std::unique_ptr<WindowBuffer> make(xcb_connection_t* connection, xcb_window_t window,
                                              int width, int height, std::uint8_t depth);
    ~WindowBuffer();
    WindowBuffer(const WindowBuffer&) = delete;
    WindowBuffer& operator=(const WindowBuffer&) = delete;

    // The picture to draw into. The server may still be reading the pixels shown last.
    cairo_surface_t* surface() const { return surface_.get(); }
    // Waits until the server has read them.
    void waitUntilRead();
    // Copies these parts to the window.
    void show(std::span<const PixelRect> parts);
    // Null when the pixels are sent through the connection.
    const ServerMemory* shared() const { return shared_.get(); }
    PixelRect bounds() const { return {0, 0, width_, height_}; }

private:
    WindowBuffer(xcb_connection_t* connection, xcb_window_t window, int width, int height,
                 std::uint8_t depth);
    bool allocate();
    void send(const PixelRect& part);

    xcb_connection_t* connection_;
    xcb_window_t window_;
    int width_;
    int height_;
    std::uint8_t depth_;
    xcb_gcontext_t context_;
    std::byte* memory_ = nullptr;  // owned by one of these two
    std::unique_ptr<ServerMemory> shared_;
    std::unique_ptr<std::byte[]> own_;
    CairoSurface surface_;
    bool isBeingRead_ = false;
};

}  // namespace quorvane
