#include "platform/linux/ports/SocketFrame.hpp"

#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <cerrno>

#include "platform/MessagePort.hpp"

namespace quorvane {
namespace {

constexpr std::uint32_t magic(const char (&letters)[5]) {
    std::uint32_t number = 0;
    for (int i = 3; i >= 0; --i) number = number << 8 | static_cast<unsigned char>(letters[i]);
    return number;
}

constexpr std::uint32_t kRequestMagic = magic("QVrq");
constexpr std::uint32_t kReplyMagic = magic("QVrp");
constexpr std::uint32_t kAwaitsReplyFlag = 1;

template <typename Number>
void put(FrameHeader& bytes, std::size_t place, Number number) {
    for (std::size_t i = 0; i < sizeof number; ++i)
        bytes[place + i] = static_cast<std::byte>(number >> (8 * i));
}

template <typename Number>
Number get(std::span<const std::byte, kFrameHeaderBytes> bytes, std::size_t place) {
    Number number = 0;
    for (std::size_t i = 0; i < sizeof number; ++i)
        number |= std::to_integer<Number>(bytes[place + i]) << (8 * i);
    return number;
}

}  // namespace

FrameHeader encode(const RequestHeader& header) {
    FrameHeader bytes;
    put(bytes, 0, kRequestMagic);
    put(bytes, 4, header.length);
    put(bytes, 8, static_cast<std::uint32_t>(header.messageID));
    put(bytes, 12, header.awaitsReply ? kAwaitsReplyFlag : 0U);
    put(bytes, 16, header.sequence);
    return bytes;
}

FrameHeader encode(const ReplyHeader& header) {
    FrameHeader bytes;
    put(bytes, 0, kReplyMagic);
    put(bytes, 4, header.length);
    put(bytes, 8, static_cast<std::uint32_t>(header.status));
    put(bytes, 12, std::uint32_t{0});
    put(bytes, 16, header.sequence);
    return bytes;
}

std::optional<RequestHeader> decodeRequestHeader(
    std::span<const std::byte, kFrameHeaderBytes> bytes) {
    const auto flags = get<std::uint32_t>(bytes, 12);
    const RequestHeader header{.length = get<std::uint32_t>(bytes, 4),
                               .messageID = static_cast<std::int32_t>(get<std::uint32_t>(bytes, 8)),
                               .awaitsReply = flags == kAwaitsReplyFlag,
                               .sequence = get<std::uint64_t>(bytes, 16)};
    if (get<std::uint32_t>(bytes, 0) != kRequestMagic || header.length > kLargestBody ||
        (flags & ~kAwaitsReplyFlag) != 0)
        return std::nullopt;
    return header;
}

std::optional<ReplyHeader> decodeReplyHeader(std::span<const std::byte, kFrameHeaderBytes> bytes) {
    const ReplyHeader header{.length = get<std::uint32_t>(bytes, 4),
                             .status = static_cast<std::int32_t>(get<std::uint32_t>(bytes, 8)),
                             .sequence = get<std::uint64_t>(bytes, 16)};
    const bool isAnswer = header.status == kPortSuccess && header.length <= kLargestBody;
    const bool isRefusal = header.status == kPortTransportError && header.length == 0;
    if (get<std::uint32_t>(bytes, 0) != kReplyMagic || get<std::uint32_t>(bytes, 12) != 0 ||
        !(isAnswer || isRefusal))
        return std::nullopt;
    return header;
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
