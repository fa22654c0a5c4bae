// Sending end of a port: one connection to the process that serves the name.
#pragma once

#include <sys/time.h>

#include <chrono>
#include <memory>
#include <mutex>

#include "platform/MessagePort.hpp"
#include "platform/linux/files/FileDescriptor.hpp"
#include "platform/linux/ports/FrameBuffer.hpp"
#include "platform/linux/ports/PortFolder.hpp"

namespace quorvane {

// A socket timeout, rounded up before the split: the system rejects a `tv_usec` of a million, which
// would leave the wait without a limit.
constexpr timeval timevalUpTo(Duration limit) {
    const auto rounded = std::chrono::ceil<std::chrono::microseconds>(limit);
    const auto seconds = std::chrono::floor<std::chrono::seconds>(rounded);
    return {.tv_sec = seconds.count(), .tv_usec = (rounded - seconds).count()};
}

// A waiting send blocks its thread and runs no other work on it. A dead connection stays dead.
class RemotePortLinux final : public RemotePort {
public:
    // Returns null when no process of this user serves the name. Never waits.
    static std::unique_ptr<RemotePort> connect(const PortFolder& folder, const std::string& name);

    PortReply send(PortRequest request) override;
    void cancel() override;

private:
    enum class Received { something, timedOut, closed };

    explicit RemotePortLinux(FileDescriptor socket) : socket_(std::move(socket)) {}

    std::int32_t sendFrame(const PortRequest& request);
    bool waitForRoom(Instant deadline) const;
    PortReply receiveReply(Duration timeout, Bytes memory);
    PortReply receiveBody(std::size_t length, Instant deadline, Bytes body);
    PortReply failure(Received received);
    PortReply brokenRules();
    Received fill(Instant deadline);
    Received skipStale(Instant deadline);
    Received receive(std::span<std::byte> place, int flags, Instant deadline, std::size_t& count);
    void limitReceiving(Duration limit);
    void close();

    std::mutex mutex_;       // keeps `cancel` off a reused descriptor number
    FileDescriptor socket_;  // closed under mutex_
    FrameBuffer buffer_;
    std::uint64_t sequence_ = 0;
    std::size_t staleBytes_ = 0;            // bytes of a late reply's body still to skip
    std::optional<Duration> receiveLimit_;  // as set on the socket, initially none
};

}  // namespace quorvane
