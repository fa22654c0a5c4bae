#include "platform/linux/wayland/SurfaceProcess.hpp"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <utility>

#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/processes/SpawnSettings.hpp"

namespace quorvane {

Result<std::unique_ptr<SurfaceProcess>> SurfaceProcess::start(
    const std::filesystem::path& program) {
    FileDescriptor connection{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    // Both processes have the timer, so that setting it again wakes neither.
    FileDescriptor timer{timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC)};
    int ends[2];
    if (!connection || !timer || pipe2(ends, O_CLOEXEC) != 0) return posixError("descriptors");
    FileDescriptor notices{ends[0]};
    const FileDescriptor itsNotices{ends[1]};
    SpawnSettings settings;
    const int descriptors[][2] = {{connection.get(), STDIN_FILENO},
                                  {timer.get(), STDOUT_FILENO},
                                  {itsNotices.get(), STDERR_FILENO + 1}};
    for (const auto& [own, its] : descriptors)
        posix_spawn_file_actions_adddup2(&settings.files, own, its);
    std::string name = program.string();
    char* arguments[] = {name.data(), nullptr};
    pid_t pid = 0;
    const int failure = posix_spawn(&pid, program.c_str(), &settings.files, &settings.attributes,
                                    arguments, environ);
    if (failure != 0) return posixError(program, failure);
    return std::unique_ptr<SurfaceProcess>{
        new SurfaceProcess{pid, std::move(connection), std::move(timer), std::move(notices)}};
}

bool SurfaceProcess::hasConnected() const {
    char notice;
    return read(notices_.get(), &notice, 1) == 1;
}

void SurfaceProcess::endAfter(Duration time) const {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    itimerspec limit{};
    limit.it_value.tv_sec = seconds.count();
    limit.it_value.tv_nsec = std::chrono::nanoseconds{time - seconds}.count();
    timerfd_settime(timer_.get(), 0, &limit, nullptr);
}

}  // namespace quorvane
