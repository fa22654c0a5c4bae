// The add-on's side of the process that holds the connection to the compositor.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>

#include "platform/Clock.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/processes/OwnedProcess.hpp"

namespace quorvane {

// Main thread only. The destructor kills the process, also a stopped one.
class SurfaceProcess {
public:
    static Result<std::unique_ptr<SurfaceProcess>> start(const std::filesystem::path& program);
    SurfaceProcess(const SurfaceProcess&) = delete;
    SurfaceProcess& operator=(const SurfaceProcess&) = delete;

    // Becomes readable when the process has connected, and again at its end.
    int notices() const { return notices_.get(); }
    // Whether the notice that has arrived is the first one.
    bool hasConnected() const;
    // The socket, once it is connected. The caller owns the descriptor.
    int takeConnection() { return connection_.release(); }
    // The kernel's timer ends the process, and with it the connection, unless this is called again
    // by then. Zero disables the timer.
    void endAfter(Duration time) const;

private:
    SurfaceProcess(pid_t pid, FileDescriptor connection, FileDescriptor timer,
                   FileDescriptor notices)
        : connection_(std::move(connection)),
          timer_(std::move(timer)),
          notices_(std::move(notices)),
          process_(pid) {}

    FileDescriptor connection_;
    FileDescriptor timer_;
    FileDescriptor notices_;
    OwnedProcess process_;
};

}  // namespace quorvane
