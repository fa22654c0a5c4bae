#include "platform/linux/wayland/SurfaceProcess.hpp"

#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/processes/SpawnSettings.hpp"

namespace quorvane {

Result<std::unique_ptr<SurfaceProcess>> SurfaceProcess::start(EventLoop& loop,
                                                              const std::filesystem::path& program,
                                                              Events events) {
    auto ends = MessageSocket::makePair();
    if (!ends) return posixError("socket");
    SpawnSettings settings;
    posix_spawn_file_actions_adddup2(&settings.files, ends->second.get(), kSurfaceSocket);
    std::string name = program.string();
    char* arguments[] = {name.data(), nullptr};
    pid_t pid = 0;
    const int failure = posix_spawn(&pid, program.c_str(), &settings.files, &settings.attributes,
                                    arguments, environ);
    if (failure != 0) return posixError(program, failure);
    return std::unique_ptr<SurfaceProcess>{
        new SurfaceProcess{loop, pid, MessageSocket{std::move(ends->first)}, std::move(events)}};
}

SurfaceProcess::SurfaceProcess(EventLoop& loop, pid_t pid, MessageSocket socket, Events events)
    : pid_(pid),
      socket_(std::move(socket)),
      events_(std::move(events)),
      watch_(loop.watch(socket_.descriptor(), EPOLLIN, [this](std::uint32_t) { receive(); })) {}

SurfaceProcess::~SurfaceProcess() {
    watch_.reset();
    kill(pid_, SIGKILL);
    while (waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
    }
}

void SurfaceProcess::send(const ToSurface& message, int file) {
    if (!socket_.send(message, file)) shutdown(socket_.descriptor(), SHUT_RDWR);
}

void SurfaceProcess::receive() {
    const auto life = life_.watch();
    while (!life.isOver()) {
        FromSurface message;
        switch (socket_.receive(message)) {
            case MessageSocket::Received::nothing: return;
            case MessageSocket::Received::message: events_.message(message); break;
            case MessageSocket::Received::ended: {
                watch_.reset();
                const auto ended = events_.ended;
                return ended();
            }
        }
    }
}

}  // namespace quorvane
