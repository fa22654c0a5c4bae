// The process that owns the card's surfaces, as the add-on sees it.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <memory>

#include "platform/LifeToken.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/loop/EventLoop.hpp"
#include "platform/linux/wayland/messages/MessageSocket.hpp"
#include "platform/linux/wayland/messages/SurfaceMessages.hpp"

namespace quorvane {

// Main thread only. The destructor kills the process, also a stopped one, and with it its surfaces.
class SurfaceProcess {
public:
    struct Events {
        std::function<void(const FromSurface&)> message;
        std::function<void()> ended;  // may destroy this object
    };

    static Result<std::unique_ptr<SurfaceProcess>> start(EventLoop& loop,
                                                         const std::filesystem::path& program,
                                                         Events events);
    ~SurfaceProcess();
    SurfaceProcess(const SurfaceProcess&) = delete;
    SurfaceProcess& operator=(const SurfaceProcess&) = delete;

    // A process that does not read its messages counts as ended.
    void send(const ToSurface& message, int file = -1);

private:
    SurfaceProcess(EventLoop& loop, pid_t pid, MessageSocket socket, Events events);
    void receive();

    pid_t pid_;
    MessageSocket socket_;
    Events events_;
    Handle watch_;
    LifeToken life_;
};

}  // namespace quorvane
