// One client of a local port: the part of a request received so far, and the part of a reply not
// yet sent.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <optional>

#include "platform/MessagePort.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/ports/FrameBuffer.hpp"
#include "platform/linux/ports/PortLimits.hpp"

namespace quorvane {

inline Instant steadyNow() { return std::chrono::steady_clock::now(); }

// Memory limit that all clients of a port share.
class BodyBudget {
public:
    explicit BodyBudget(std::size_t total) : left_(total) {}

    bool take(std::size_t size) {
        if (size > left_) return false;
        left_ -= size;
        return true;
    }
    void giveBack(std::size_t size) { left_ += size; }

private:
    std::size_t left_;
};

// Memory shared by the clients of a port. Requests and replies have separate limits, because any
// process of the user can begin a long request, but only clients with the secret receive a long
// reply.
class PortMemory {
public:
    explicit PortMemory(std::size_t bodyBytes) : replies(bodyBytes), requests_(bodyBytes) {}

    // Takes a buffer for a long request, which counts until it is given back. Keeps one spare
    // buffer, because fresh memory from the system costs more than reading into it.
    std::optional<Bytes> takeBuffer(std::size_t size) {
        if (!requests_.take(size)) return std::nullopt;
        Bytes buffer = std::exchange(spare_, {});
        if (buffer.capacity() < size) return Bytes(size);
        buffer.resize(size);
        return buffer;
    }
    void giveBackBuffer(Bytes buffer) {
        requests_.giveBack(buffer.size());
        if (buffer.capacity() <= kLargestSpare) spare_ = std::move(buffer);
    }

    BodyBudget replies;  // replies that wait to be sent

private:
    static constexpr std::size_t kLargestSpare = 2 * 1024 * 1024;
    BodyBudget requests_;
    Bytes spare_;
};

// Never blocks. Owned by its port and used on the port's thread.
class PortConnection {
public:
    // `peer` is the client's process.
    PortConnection(FileDescriptor socket, pid_t peer, const PortLimits& limits, PortMemory& memory);
    ~PortConnection();

    // Reads available bytes, answers complete requests and writes as much as the socket takes.
    // Returns false when the connection is over.
    bool serve(const PortHandler& handler);

    int socket() const { return socket_.get(); }
    pid_t peer() const { return peer_; }
    // While a reply waits to be sent, the connection reads nothing.
    bool isWriting() const { return output_.has_value(); }
    // The deadline for completing the current request or reply; nullopt when idle.
    std::optional<Instant> deadline() const { return deadline_; }

    std::uint64_t lastUse = 0;  // the owner's event count
    std::uint32_t watched = 0;  // the events that the owner waits for

private:
    struct Output {
        FrameHeader header;
        PortAnswer body;
        std::size_t sent = 0;
        bool isCounted = false;  // counted in the limit for waiting replies
    };

    bool read();
    bool readBody();
    bool answerComplete(const PortHandler& handler);
    bool beginBody(std::size_t length);
    bool answer(const PortHandler& handler, std::span<std::byte> body);
    bool write(Output output);
    bool writeRest();
    void dropBody();
    void dropOutput();

    FileDescriptor socket_;
    const pid_t peer_;
    const PortLimits& limits_;
    PortMemory& memory_;
    FrameBuffer buffer_;
    std::optional<RequestHeader> request_;  // header read, body not yet complete
    Bytes body_;                            // of a request that does not fit the small buffer
    std::size_t bodyFilled_ = 0;
    std::uint64_t sequence_ = 0;
    std::optional<Output> output_;
    std::optional<Instant> deadline_;
};

}  // namespace quorvane
