// The process that owns the connection to the compositor, as the add-on sees it.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <memory>

#include "platform/Clock.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/processes/OwnedProcess.hpp"

namespace quorvane {

// Main thread only. The destructor kills the process, also a stopped one, and with it the
// connection and its surfaces.
class SurfaceProcess {
public:
    static Result<std::unique_ptr<SurfaceProcess>> start(const std::filesystem::path& program);
    SurfaceProcess(const SurfaceProcess&) = delete;
    SurfaceProcess& operator=(const SurfaceProcess&) = delete;

    // The connection. The caller owns the descriptor.
    int takeConnection() { return connection_.release(); }
    // The kernel's timer ends the process unless this is called again by then. Zero: it may stay.
    void endAfter(Duration time);

private:
    SurfaceProcess(pid_t pid, FileDescriptor connection, FileDescriptor timer)
        : connection_(std::move(connection)), timer_(std::move(timer)), process_(pid) {}

    FileDescriptor connection_;
    FileDescriptor timer_;
    OwnedProcess process_;
};

}  // namespace quorvane
