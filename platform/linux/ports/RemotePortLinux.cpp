#include "platform/linux/ports/RemotePortLinux.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/files/OwnPeer.hpp"

namespace quorvane {
namespace {

constexpr Duration kLongestLimit = std::chrono::hours{24};
// Tolerance between the wanted and the set receive limit of the socket before it is set again, and
// so how late a wait may end.
constexpr Duration kLimitTolerance = std::chrono::milliseconds{20};

Instant now() { return std::chrono::steady_clock::now(); }

// Clamps the timeout, because callers may pass a very long one.
Instant deadlineAfter(Duration timeout) {
    return now() + std::clamp(timeout, Duration{}, kLongestLimit);
}

}  // namespace

std::unique_ptr<RemotePort> RemotePortLinux::connect(const PortFolder& folder,
                                                     const std::string& name) {
    const auto address = folder.address(name);
    if (!address) return nullptr;
    // Connects without blocking, so that a stuck server with a full queue counts as no port instead
    // of blocking.
    FileDescriptor socket{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)};
    if (!socket || ::connect(socket.get(), address->get(), address->length) != 0 ||
        !ownPeer(socket.get()))
        return nullptr;
    if (fcntl(socket.get(), F_SETFL, 0) != 0) return nullptr;
    askForSendRoom(socket.get());
    return std::unique_ptr<RemotePort>{new RemotePortLinux{std::move(socket)}};
}

PortReply RemotePortLinux::send(PortRequest request) {
    if (!socket_) return {.status = kPortIsInvalid};
    if (request.secret.size() + request.body.size() > kLargestBody)
        return {.status = kPortTransportError};
    if (const std::int32_t status = sendFrame(request); status != kPortSuccess)
        return {.status = status};
    if (!request.awaitsReply) return {};
    return receiveReply(request.receiveTimeout, std::move(request.replyMemory));
}

void RemotePortLinux::cancel() {
    const std::lock_guard guard{mutex_};
    if (socket_) shutdown(socket_.get(), SHUT_RDWR);
}

void RemotePortLinux::close() {
    const std::lock_guard guard{mutex_};
    socket_.reset();
}

std::int32_t RemotePortLinux::sendFrame(const PortRequest& request) {
    const std::size_t length = request.secret.size() + request.body.size();
    const FrameHeader header = encode(RequestHeader{.length = static_cast<std::uint32_t>(length),
                                                    .messageID = request.messageID,
                                                    .awaitsReply = request.awaitsReply,
                                                    .sequence = sequence_ + 1});
    const FrameParts parts{header, request.secret, request.body};
    std::size_t sent = 0;
    // Read the clock only when the kernel does not take the whole frame at once.
    std::optional<Instant> deadline;
    while (sent < header.size() + length) {
        const ssize_t count = sendFrameRest(socket_.get(), parts, sent);
        if (count >= 0) {
            sent += static_cast<std::size_t>(count);
        } else if (errno != EAGAIN) {
            close();
            return sent == 0 ? kPortIsInvalid : kPortTransportError;
        } else {
            if (!deadline) deadline = deadlineAfter(request.sendTimeout);
            if (waitForRoom(*deadline)) continue;
            if (sent > 0) close();  // no frame can follow half a frame
            return kPortSendTimeout;
        }
    }
    ++sequence_;
    return kPortSuccess;
}

// Returns false when the deadline passes first.
bool RemotePortLinux::waitForRoom(Instant deadline) const {
    while (true) {
        const Duration left = deadline - now();
        if (left <= Duration{}) return false;
        const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
        const timespec limit{.tv_sec = seconds.count(), .tv_nsec = (left - seconds).count()};
        pollfd entry{.fd = socket_.get(), .events = POLLOUT, .revents = 0};
        const int ready = ppoll(&entry, 1, &limit, nullptr);
        if (ready > 0) return true;
        if (ready < 0 && errno != EINTR) return false;
    }
}

PortReply RemotePortLinux::receiveReply(Duration timeout, Bytes memory) {
    const Instant deadline = deadlineAfter(timeout);
    while (true) {
        if (const auto skipped = skipStale(deadline); skipped != Received::something)
            return failure(skipped);
        while (!buffer_.holdsHeader())
            if (const auto filled = fill(deadline); filled != Received::something)
                return failure(filled);
        const auto header = decodeReplyHeader(buffer_.header());
        if (!header || header->sequence > sequence_) return brokenRules();
        buffer_.used(kFrameHeaderBytes);
        if (header->sequence < sequence_) {
            staleBytes_ = header->length;
            continue;
        }
        if (header->status != kPortSuccess) return {.status = header->status};
        if (header->length == 0) return {};
        return receiveBody(header->length, deadline, std::move(memory));
    }
}

PortReply RemotePortLinux::receiveBody(std::size_t length, Instant deadline, Bytes body) {
    body.clear();  // avoids copying its old contents when it grows
    body.resize(length);
    const auto early = buffer_.filled().first(std::min(length, buffer_.filled().size()));
    std::ranges::copy(early, body.begin());
    std::size_t done = early.size();
    buffer_.used(done);
    while (done < length) {
        std::size_t count = 0;
        const auto received = receive(std::span{body}.subspan(done), MSG_WAITALL, deadline, count);
        done += count;
        if (received == Received::something) continue;
        staleBytes_ = length - done;
        return failure(received);
    }
    return {.status = kPortSuccess, .body = std::move(body)};
}

PortReply RemotePortLinux::failure(Received received) {
    if (received == Received::timedOut) return {.status = kPortReceiveTimeout};
    close();
    return {.status = kPortBecameInvalid};
}

PortReply RemotePortLinux::brokenRules() {
    close();
    return {.status = kPortTransportError};
}

RemotePortLinux::Received RemotePortLinux::fill(Instant deadline) {
    std::size_t count = 0;
    const auto received = receive(buffer_.room(), 0, deadline, count);
    buffer_.added(count);
    return received;
}

RemotePortLinux::Received RemotePortLinux::skipStale(Instant deadline) {
    while (staleBytes_ > 0) {
        if (buffer_.filled().empty())
            if (const auto filled = fill(deadline); filled != Received::something) return filled;
        const std::size_t skipped = std::min(staleBytes_, buffer_.filled().size());
        buffer_.used(skipped);
        staleBytes_ -= skipped;
    }
    return Received::something;
}

// Waits with the socket's own receive timeout, because polling first would need a second system
// call. Checks the deadline before each wait, so that a peer that sends byte by byte cannot extend
// it.
RemotePortLinux::Received RemotePortLinux::receive(std::span<std::byte> place, int flags,
                                                   Instant deadline, std::size_t& count) {
    while (true) {
        const Duration left = deadline - now();
        if (left > Duration{})
            limitReceiving(left);
        else
            flags |= MSG_DONTWAIT;
        const ssize_t result = recv(socket_.get(), place.data(), place.size(), flags);
        if (result > 0) {
            count = static_cast<std::size_t>(result);
            return Received::something;
        }
        if (result == 0) return Received::closed;
        if (errno != EAGAIN && errno != EINTR) return Received::closed;
        // The socket's timeout may have been slightly too short.
        if (errno == EAGAIN && now() >= deadline) return Received::timedOut;
    }
}

void RemotePortLinux::limitReceiving(Duration limit) {
    if (receiveLimit_ && std::chrono::abs(*receiveLimit_ - limit) < kLimitTolerance) return;
    const timeval value = timevalUpTo(limit);
    if (setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &value, sizeof value) == 0)
        receiveLimit_ = limit;
}

}  // namespace quorvane
