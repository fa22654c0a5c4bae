// The host's side of the process that fetches one picture.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/FetchPicture.hpp"
#include "platform/PlatformError.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/loop/EventLoop.hpp"
#include "platform/linux/processes/OwnedProcess.hpp"

namespace quorvane {

// Main thread only. The destructor kills the process.
class FetchProcess {
public:
    // `done` may destroy this object.
    static Result<std::unique_ptr<FetchProcess>> start(EventLoop& loop,
                                                       const std::filesystem::path& program,
                                                       const std::string& url,
                                                       std::function<void(FetchAnswer)> done);
    FetchProcess(const FetchProcess&) = delete;
    FetchProcess& operator=(const FetchProcess&) = delete;

private:
    FetchProcess(EventLoop& loop, pid_t pid, FileDescriptor socket,
                 std::function<void(FetchAnswer)> done);
    void receive();

    OwnedProcess process_;
    FileDescriptor socket_;
    std::function<void(FetchAnswer)> done_;
    Bytes received_;
    Handle watch_;
};

FetchPicture makeFetchPicture(EventLoop& loop, std::filesystem::path program);

}  // namespace quorvane
