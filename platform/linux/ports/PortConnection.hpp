// One client of a local port: what it has sent of a request, and what it has not yet taken of a
// reply.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/MessagePort.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/ports/FrameBuffer.hpp"
#include "platform/linux/ports/PortLimits.hpp"

namespace quorvane {

// Memory that all clients of a port may take up together.
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

// What the clients of a port share. Apart for requests and replies: anybody can begin a long
// request, but only who knows the secret gets a long reply.
class PortMemory {
public:
    explicit PortMemory(std::size_t bodyBytes) : replies(bodyBytes), requests_(bodyBytes) {}

    // For a long request; counts until it is given back. One spare buffer is kept: memory fresh
    // from the system costs more than what is read into it.
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

    BodyBudget replies;  // those that wait to be taken

private:
    static constexpr std::size_t kLargestSpare = 2 * 1024 * 1024;
    BodyBudget requests_;
    Bytes spare_;
};

// Never blocks. Owned by its port, on the port's thread.
class PortConnection {
public:
    PortConnection(FileDescriptor socket, const PortLimits& limits, PortMemory& memory);
    ~PortConnection();

    // Reads what there is, answers what is complete and writes what can be taken. False when the
    // connection is over.
    bool serve(const PortHandler& handler);

    int socket() const { return socket_.get(); }
    std::int32_t peer() const { return peer_; }
    // While a reply waits to be taken, nothing is read.
    bool isWriting() const { return output_.has_value(); }
    // When what has been begun must be complete; nothing between requests.
    std::optional<Instant> deadline() const { return deadline_; }

    std::uint64_t lastUse = 0;  // the owner's count of events
    std::size_t place = 0;      // in the owner's list
    std::uint32_t watched = 0;  // the events that the owner waits for

private:
    struct Output {
        FrameHeader header;
        PortAnswer body;
        std::size_t sent = 0;
        bool isCounted = false;  // in the memory that waiting replies share
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
    const PortLimits& limits_;
    PortMemory& memory_;
    std::int32_t peer_ = 0;
    FrameBuffer buffer_;
    std::optional<RequestHeader> request_;  // read, its body not yet complete
    Bytes body_;                            // of a request that does not fit the small buffer
    std::size_t bodyFilled_ = 0;
    std::uint64_t sequence_ = 0;
    std::optional<Output> output_;
    std::optional<Instant> deadline_;
};

}  // namespace quorvane
