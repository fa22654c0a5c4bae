#include "platform/linux/wayland/SurfaceProcess.hpp"

#include <sys/socket.h>
#include <sys/timerfd.h>

#include <utility>

#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/processes/SpawnSettings.hpp"

namespace quorvane {

Result<std::unique_ptr<SurfaceProcess>> SurfaceProcess::start(
    const std::filesystem::path& program) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return posixError("socket");
    FileDescriptor own{ends[0]};
    const FileDescriptor others{ends[1]};
    // Both processes have the timer, so that setting it again wakes neither.
    FileDescriptor timer{timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)};
    if (!timer) return posixError("timer");
    SpawnSettings settings;
    posix_spawn_file_actions_adddup2(&settings.files, others.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&settings.files, timer.get(), STDOUT_FILENO);
    std::string name = program.string();
    char* arguments[] = {name.data(), nullptr};
    pid_t pid = 0;
    const int failure = posix_spawn(&pid, program.c_str(), &settings.files, &settings.attributes,
                                    arguments, environ);
    if (failure != 0) return posixError(program, failure);
    return std::unique_ptr<SurfaceProcess>{
        new SurfaceProcess{pid, std::move(own), std::move(timer)}};
}

void SurfaceProcess::endAfter(Duration time) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    itimerspec limit{};
    limit.it_value.tv_sec = seconds.count();
    limit.it_value.tv_nsec = std::chrono::nanoseconds{time - seconds}.count();
    timerfd_settime(timer_.get(), 0, &limit, nullptr);
}

}  // namespace quorvane
