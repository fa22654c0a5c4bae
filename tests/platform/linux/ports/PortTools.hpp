// Shared tools of the port tests: a port served on a thread, and bare sockets in its folder.
#pragma once

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include "platform/linux/ports/MessagePortsLinux.hpp"
#include "platform/linux/ports/PortFolder.hpp"
#include "platform/linux/ports/SocketFrame.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {

using namespace std::chrono_literals;

inline constexpr char kName[] = "group.example.quillon.Quorvane.messageport";

// Serves while it lives.
class ServedPort {
public:
    ServedPort(const OpenPort& open, PortHandler handler) : port_(open(kName, std::move(handler))) {
        if (port_ != nullptr) thread_ = std::thread{[this] { port_->run(); }};
    }
    ~ServedPort() { stop(); }
    void stop() {
        if (port_ == nullptr) return;
        port_->stop();
        thread_.join();
        port_.reset();
    }

private:
    std::unique_ptr<LocalPort> port_;
    std::thread thread_;
};

// Answers with the request's body.
inline Bytes echo(std::int32_t, ByteView body) { return copyOf(body); }

inline PortRequest request(ByteView body, Duration timeout = 20s) {
    return {.messageID = 7,
            .body = body,
            .sendTimeout = timeout,
            .receiveTimeout = timeout,
            .awaitsReply = true};
}

inline std::string textIn(const PortReply& reply) {
    return reply.body ? std::string{textOf(*reply.body)} : "nothing";
}

// A blocking socket that gives up after 20 s.
class BareSocket {
public:
    explicit BareSocket(int descriptor) : socket_(descriptor) {
        const timeval limit{.tv_sec = 20, .tv_usec = 0};
        setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }
    static BareSocket connectedTo(const std::filesystem::path& folder) {
        BareSocket socket{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
        const auto open = PortFolder::open(folder, PortFolder::Purpose::look);
        const auto address = open->address(kName);
        EXPECT_EQ(connect(socket.get(), address->get(), address->length), 0);
        return socket;
    }

    int get() const { return socket_.get(); }
    void close() { socket_.reset(); }
    std::size_t sendAll(ByteView bytes) const {
        const ssize_t count = send(get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        return count < 0 ? 0 : static_cast<std::size_t>(count);
    }
    // Up to this many bytes; fewer when the other end has closed.
    Bytes receive(std::size_t length) const {
        Bytes bytes(length);
        const ssize_t count = recv(get(), bytes.data(), length, MSG_WAITALL);
        bytes.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
        return bytes;
    }
    bool waitFor(short events) const {
        pollfd entry{get(), events, 0};
        return poll(&entry, 1, 20000) == 1;
    }
    // Waits for the other end to close; drops the bytes that still arrive.
    bool isClosed() const {
        std::array<std::byte, 65536> dropped;
        while (true) {
            const ssize_t count = recv(get(), dropped.data(), dropped.size(), 0);
            if (count <= 0) return count == 0 || errno == ECONNRESET;
        }
    }

private:
    FileDescriptor socket_;
};

// A program that listens under a port's name. The test controls how it serves its one client.
class BareServer {
public:
    explicit BareServer(const std::filesystem::path& folder, int backlog = 8) {
        const auto open = PortFolder::open(folder, PortFolder::Purpose::serve);
        const auto address = open->address(kName);
        EXPECT_EQ(bind(listener_.get(), address->get(), address->length), 0);
        EXPECT_EQ(listen(listener_.get(), backlog), 0);
    }
    BareSocket accept() const { return BareSocket{::accept(listener_.get(), nullptr, nullptr)}; }

private:
    const FileDescriptor listener_{::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
};

inline Bytes frame(const FrameHeader& header, ByteView body = {}) {
    Bytes bytes{header.begin(), header.end()};
    append(bytes, body);
    return bytes;
}
inline Bytes requestFrame(std::uint64_t sequence, ByteView body, bool awaitsReply = true) {
    return frame(
        encode(RequestHeader{static_cast<std::uint32_t>(body.size()), 7, awaitsReply, sequence}),
        body);
}
inline Bytes replyFrame(std::uint64_t sequence, ByteView body) {
    return frame(encode(ReplyHeader{static_cast<std::uint32_t>(body.size()), 0, sequence}), body);
}

}  // namespace quorvane
