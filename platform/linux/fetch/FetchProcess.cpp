#include "platform/linux/fetch/FetchProcess.hpp"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <optional>

#include "platform/LifeToken.hpp"
#include "platform/linux/fetch/FetchMessages.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/files/PosixError.hpp"
#include "platform/linux/processes/OwnedProcess.hpp"
#include "platform/linux/processes/SpawnSettings.hpp"

namespace quorvane {
namespace {

constexpr std::size_t kPiece = 64 * 1024;
constexpr std::size_t kMaxReceived = sizeof(FetchHeader) + kLargestArtwork;

FetchAnswer answerIn(ByteView received) {
    FetchHeader header{};
    if (received.size() >= sizeof header) std::memcpy(&header, received.data(), sizeof header);
    if (received.size() < sizeof header || header.length != received.size() - sizeof header)
        return FetchFailure{"the server did not send the picture in time"};
    const ByteView content = received.subspan(sizeof header);
    if (header.kind == FetchKind::picture) return copyOf(content);
    std::string text{textOf(content.first(std::min(content.size(), kLongestFetchURL + 1)))};
    if (header.kind == FetchKind::redirect) return FetchRedirect{std::move(text)};
    return FetchFailure{std::move(text)};
}

class FetchProcess {
public:
    // `done` may destroy this object.
    FetchProcess(EventLoop& loop, const std::filesystem::path& program, const std::string& url,
                 std::function<void(FetchAnswer)> done)
        : done_(std::move(done)) {
        if (const auto started = start(program, url); !started) {
            loop.mainThread().post(
                [this, life = life_.watch(), sentence = started.error().description] {
                    if (!life.isOver()) finish(FetchFailure{sentence});
                });
            return;
        }
        received_.reserve(kMaxReceived + kPiece);  // memory that is not written is not used
        watch_ = loop.watch(socket_.get(), EPOLLIN, [this](std::uint32_t) { receive(); });
    }

private:
    Result<void> start(const std::filesystem::path& program, const std::string& url);
    void receive();
    void finish(FetchAnswer answer) {
        watch_.reset();
        const auto done = std::move(done_);
        done(std::move(answer));
    }

    std::optional<OwnedProcess> process_;
    FileDescriptor socket_;
    std::function<void(FetchAnswer)> done_;
    Bytes received_;
    Handle watch_;
    LifeToken life_;
};

Result<void> FetchProcess::start(const std::filesystem::path& program, const std::string& url) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return posixError("socket");
    socket_ = FileDescriptor{ends[0]};
    const FileDescriptor itsSocket{ends[1]};
    SpawnSettings settings;
    posix_spawn_file_actions_adddup2(&settings.files, itsSocket.get(), kFetchSocket);
    for (const int output : {STDOUT_FILENO, STDERR_FILENO})
        posix_spawn_file_actions_addopen(&settings.files, output, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&settings.files, STDERR_FILENO + 1);
    std::string name = program.string();
    char* arguments[] = {name.data(), nullptr};
    // A variable could name a proxy, other certificates or a library to load.
    char* environment[] = {nullptr};
    pid_t pid = 0;
    const int failure = posix_spawn(&pid, program.c_str(), &settings.files, &settings.attributes,
                                    arguments, environment);
    if (failure != 0) return posixError(program, failure);
    process_.emplace(pid);
    // Through the socket, because every user can read a process's arguments. A new socket has room.
    const ssize_t sent = send(socket_.get(), url.data(), url.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent == static_cast<ssize_t>(url.size())) shutdown(socket_.get(), SHUT_WR);
    return {};
}

void FetchProcess::receive() {
    const std::size_t before = received_.size();
    received_.resize(before + kPiece);
    const ssize_t count = recv(socket_.get(), received_.data() + before, kPiece, MSG_DONTWAIT);
    received_.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
    if (count > 0 && received_.size() <= kMaxReceived) return;
    finish(answerIn(received_));
}

}  // namespace

FetchPicture makeFetchPicture(EventLoop& loop, std::filesystem::path program) {
    return [&loop, program = std::move(program)](const std::string& url,
                                                 const std::function<void(FetchAnswer)>& done) {
        return Handle{[owned = std::make_shared<FetchProcess>(loop, program, url, done)] {}};
    };
}

}  // namespace quorvane
