// One end of the socket between the add-on and the surface process.
#pragma once

#include <sys/types.h>

#include <optional>
#include <span>
#include <type_traits>
#include <utility>

#include "platform/linux/files/FileDescriptor.hpp"

namespace quorvane {

// Never blocks. A packet is a whole message or it is refused.
class MessageSocket {
public:
    enum class Received { message, nothing, ended };

    explicit MessageSocket(FileDescriptor descriptor) : descriptor_(std::move(descriptor)) {}

    // Two connected ends, closed on exec; nullopt when the system has no more descriptors.
    static std::optional<std::pair<FileDescriptor, FileDescriptor>> makePair();

    int descriptor() const { return descriptor_.get(); }
    // Returns whether the message was sent, with a copy of the file if there is one.
    template <typename Message>
    bool send(const Message& message, int file = -1) const {
        static_assert(std::is_trivially_copyable_v<Message>);
        return sendBytes(std::as_bytes(std::span{&message, 1}), file);
    }
    // `ended`: the other end is closed, or it sent a packet of another size.
    template <typename Message>
    Received receive(Message& message, FileDescriptor* file = nullptr) const {
        static_assert(std::is_trivially_copyable_v<Message>);
        return receiveBytes(std::as_writable_bytes(std::span{&message, 1}), file);
    }

private:
    bool sendBytes(std::span<const std::byte> bytes, int file) const;
    Received receiveBytes(std::span<std::byte> bytes, FileDescriptor* file) const;

    FileDescriptor descriptor_;
};

}  // namespace quorvane
