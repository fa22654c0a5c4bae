#include "platform/linux/ports/LocalPortLinux.hpp"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <map>

#include "platform/linux/files/OwnPeer.hpp"

namespace quorvane {
namespace {

constexpr int kBacklog = 128;
constexpr int kMaxAcceptedAtOnce = 64;
constexpr Duration kAcceptPause = std::chrono::milliseconds{250};

}  // namespace

std::unique_ptr<LocalPort> LocalPortLinux::open(PortFolder folder, const std::string& name,
                                                PortHandler handler, const PortLimits& limits) {
    auto lock = folder.lock(name);
    if (!lock) return nullptr;
    std::unique_ptr<LocalPortLinux> port{
        new LocalPortLinux{std::move(folder), name, *std::move(lock), std::move(handler), limits}};
    if (!port->listen()) return nullptr;
    return port;
}

LocalPortLinux::LocalPortLinux(PortFolder folder, std::string name, FileLock lock,
                               PortHandler handler, const PortLimits& limits)
    : folder_(std::move(folder)),
      name_(std::move(name)),
      lock_(std::move(lock)),
      handler_(std::move(handler)),
      limits_(limits),
      epoll_(epoll_create1(EPOLL_CLOEXEC)),
      wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      memory_(limits.bodyBytes) {}

// Removes the socket's file before the lock is released, so that a successor's file is never
// removed.
LocalPortLinux::~LocalPortLinux() {
    if (listener_) folder_.remove(name_);
}

bool LocalPortLinux::listen() {
    const auto address = folder_.address(name_);
    // An existing file belongs to a dead server, because this process holds the lock.
    if (!epoll_ || !wake_ || !address || !folder_.remove(name_)) return false;
    FileDescriptor socket{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
    if (!socket || bind(socket.get(), address->get(), address->length) != 0) return false;
    listener_ = std::move(socket);
    folder_.protect(name_);
    return ::listen(listener_.get(), kBacklog) == 0 &&
           watch(listener_.get(), EPOLLIN, &listener_, EPOLL_CTL_ADD) &&
           watch(wake_.get(), EPOLLIN, &wake_, EPOLL_CTL_ADD);
}

bool LocalPortLinux::watch(int descriptor, std::uint32_t events, void* tag, int operation) {
    epoll_event event{.events = events, .data = {.ptr = tag}};
    return epoll_ctl(epoll_.get(), operation, descriptor, &event) == 0;
}

void LocalPortLinux::stop() {
    isStopped_ = true;
    eventfd_write(wake_.get(), 1);
}

void LocalPortLinux::run() {
    std::array<epoll_event, 64> events;
    while (!isStopped_) {
        const auto deadline = nextDeadline();
        const int count = wait(events, deadline);
        if (count < 0 && errno != EINTR) return;
        const Instant woke = deadline ? steadyNow() : Instant::min();
        bool hasNewClients = false;
        for (const epoll_event& event : std::span{events}.first(std::max(count, 0))) {
            if (event.data.ptr == &wake_) continue;
            if (event.data.ptr == &listener_)
                hasNewClients = true;
            else if (!isStopped_)
                serve(*static_cast<PortConnection*>(event.data.ptr));
        }
        // After the clients, because accepting one may drop another whose event is in this batch.
        if (hasNewClients) acceptWaiting();
        // Uses the time before the clients were served, because no client was read while a handler
        // ran.
        if (deadline && woke >= *deadline) expire(woke);
    }
}

int LocalPortLinux::wait(std::span<epoll_event> events, std::optional<Instant> deadline) const {
    int milliseconds = -1;
    if (deadline) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - steadyNow());
        milliseconds = static_cast<int>(std::max(left.count(), decltype(left.count()){0}));
    }
    return epoll_wait(epoll_.get(), events.data(), static_cast<int>(events.size()), milliseconds);
}

void LocalPortLinux::acceptWaiting() {
    for (int i = 0; i < kMaxAcceptedAtOnce; ++i) {
        FileDescriptor socket{
            accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK)};
        if (!socket) {
            const bool isOutOfResources =
                errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
            if (isOutOfResources) pauseListening();
            if (errno != ECONNABORTED && errno != EINTR) return;
        } else if (const auto peer = ownPeer(socket.get())) {
            add(std::move(socket), *peer);
        }
    }
}

// With no free descriptors the listener would stay readable and make the loop spin.
void LocalPortLinux::pauseListening() {
    watch(listener_.get(), 0, &listener_, EPOLL_CTL_MOD);
    listensAgain_ = steadyNow() + kAcceptPause;
}

void LocalPortLinux::add(FileDescriptor socket, pid_t peer) {
    if (connections_.size() >= limits_.connections) dropFromGreediest();
    // Safe for clients without the secret, because they receive nothing to fill it with.
    askForSendRoom(socket.get());
    auto connection = std::make_unique<PortConnection>(std::move(socket), peer, limits_, memory_);
    connection->lastUse = ++uses_;
    connection->watched = EPOLLIN;
    if (watch(connection->socket(), EPOLLIN, connection.get(), EPOLL_CTL_ADD))
        connections_.push_back(std::move(connection));
}

void LocalPortLinux::serve(PortConnection& connection) {
    connection.lastUse = ++uses_;
    if (!connection.serve(handler_)) return drop(connection);
    const std::uint32_t wanted = connection.isWriting() ? EPOLLOUT : EPOLLIN;
    if (wanted != connection.watched) {
        watch(connection.socket(), wanted, &connection, EPOLL_CTL_MOD);
        connection.watched = wanted;
    }
}

void LocalPortLinux::drop(PortConnection& connection) {
    unwatch(connection);
    std::erase_if(connections_, [&](const auto& each) { return each.get() == &connection; });
}

// Closing the socket does not end the watch while a forked child that has not yet called exec holds
// it too. The next event would then refer to a destroyed connection.
void LocalPortLinux::unwatch(const PortConnection& connection) {
    watch(connection.socket(), 0, nullptr, EPOLL_CTL_DEL);
}

// Keeps one process from crowding out the others: the process with the most connections loses its
// least recently used one.
void LocalPortLinux::dropFromGreediest() {
    std::map<pid_t, std::size_t> counts;
    for (const auto& connection : connections_) ++counts[connection->peer()];
    const auto rank = [&](const std::unique_ptr<PortConnection>& connection) {
        return std::pair{counts[connection->peer()],
                         std::numeric_limits<std::uint64_t>::max() - connection->lastUse};
    };
    drop(**std::ranges::max_element(connections_, {}, rank));
}

std::optional<Instant> LocalPortLinux::nextDeadline() const {
    std::optional<Instant> next = listensAgain_;
    for (const auto& connection : connections_)
        if (const auto deadline = connection->deadline(); deadline && (!next || *deadline < *next))
            next = deadline;
    return next;
}

void LocalPortLinux::expire(Instant present) {
    if (listensAgain_ && present >= *listensAgain_) {
        watch(listener_.get(), EPOLLIN, &listener_, EPOLL_CTL_MOD);
        listensAgain_.reset();
    }
    std::erase_if(connections_, [&](const auto& connection) {
        const bool isOver = connection->deadline() && present >= *connection->deadline();
        if (isOver) unwatch(*connection);
        return isOver;
    });
}

}  // namespace quorvane
