#include "platform/linux/ports/SocketFrame.hpp"

#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "platform/MessagePort.hpp"

namespace quorvane {
namespace {

// The header's bytes, as little-endian machines hold them.
struct Wire {
    std::array<char, 4> magic;
    std::uint32_t length;
    std::int32_t code;  // of a request its message identifier, of a reply its status
    std::uint32_t flags;
    std::uint64_t sequence;
};
static_assert(sizeof(Wire) == kFrameHeaderBytes && std::endian::native == std::endian::little);

constexpr std::array kRequestMagic{'Q', 'V', 'r', 'q'};
constexpr std::array kReplyMagic{'Q', 'V', 'r', 'p'};
constexpr std::uint32_t kAwaitsReplyFlag = 1;

Wire wireOf(std::span<const std::byte, kFrameHeaderBytes> bytes) {
    Wire wire;
    std::memcpy(&wire, bytes.data(), sizeof wire);
    return wire;
}

}  // namespace

FrameHeader encode(const RequestHeader& header) {
    return std::bit_cast<FrameHeader>(Wire{kRequestMagic, header.length, header.messageID,
                                           header.awaitsReply ? kAwaitsReplyFlag : 0,
                                           header.sequence});
}

FrameHeader encode(const ReplyHeader& header) {
    return std::bit_cast<FrameHeader>(
        Wire{kReplyMagic, header.length, header.status, 0, header.sequence});
}

std::optional<RequestHeader> decodeRequestHeader(
    std::span<const std::byte, kFrameHeaderBytes> bytes) {
    const Wire wire = wireOf(bytes);
    if (wire.magic != kRequestMagic || wire.length > kLargestBody ||
        (wire.flags & ~kAwaitsReplyFlag) != 0)
        return std::nullopt;
    return RequestHeader{wire.length, wire.code, wire.flags == kAwaitsReplyFlag, wire.sequence};
}

std::optional<ReplyHeader> decodeReplyHeader(std::span<const std::byte, kFrameHeaderBytes> bytes) {
    const Wire wire = wireOf(bytes);
    const bool isAnswer = wire.code == kPortSuccess && wire.length <= kLargestBody;
    const bool isRefusal = wire.code == kPortTransportError && wire.length == 0;
    if (wire.magic != kReplyMagic || wire.flags != 0 || !(isAnswer || isRefusal))
        return std::nullopt;
    return ReplyHeader{wire.length, wire.code, wire.sequence};
}

void askForSendRoom(int socket) {
    constexpr int kRoom = 512 * 1024;
    setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &kRoom, sizeof kRoom);
}

ssize_t sendFrameRest(int socket, const FrameParts& parts, std::size_t sent) {
    std::array<iovec, std::tuple_size_v<FrameParts>> rest{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const ByteView unsent = parts[i].subspan(std::min(sent, parts[i].size()));
        sent -= parts[i].size() - unsent.size();
        // sendmsg only reads the memory.
        rest[i] = {const_cast<std::byte*>(unsent.data()), unsent.size()};
    }
    msghdr message{};
    message.msg_iov = rest.data();
    message.msg_iovlen = rest.size();
    while (true) {
        const ssize_t count = sendmsg(socket, &message, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (count >= 0 || errno != EINTR) return count;
    }
}

}  // namespace quorvane
