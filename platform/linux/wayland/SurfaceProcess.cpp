#include "platform/linux/wayland/SurfaceProcess.hpp"

#include <spawn.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "platform/linux/files/PosixError.hpp"

namespace quorvane {
namespace {

struct SpawnSettings {
    posix_spawn_file_actions_t files;
    posix_spawnattr_t attributes;

    explicit SpawnSettings(int socket) {
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_adddup2(&files, socket, kSurfaceSocket);
        posix_spawnattr_init(&attributes);
        // The add-on blocks and ignores signals that must end that process.
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
        sigset_t all;
        sigfillset(&all);
        posix_spawnattr_setsigdefault(&attributes, &all);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~SpawnSettings() {
        posix_spawnattr_destroy(&attributes);
        posix_spawn_file_actions_destroy(&files);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;
};

}  // namespace

Result<std::unique_ptr<SurfaceProcess>> SurfaceProcess::start(EventLoop& loop,
                                                              const std::filesystem::path& program,
                                                              Events events) {
    auto ends = MessageSocket::makePair();
    if (!ends) return posixError("socket");
    const SpawnSettings settings{ends->second.get()};
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
