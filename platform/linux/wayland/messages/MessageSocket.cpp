#include "platform/linux/wayland/messages/MessageSocket.hpp"

#include <sys/socket.h>

#include <cerrno>
#include <cstring>

namespace quorvane {
namespace {

struct alignas(cmsghdr) FileRoom {
    char bytes[CMSG_SPACE(sizeof(int))]{};
};

}  // namespace

std::optional<std::pair<FileDescriptor, FileDescriptor>> MessageSocket::makePair() {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0)
        return std::nullopt;
    return std::pair{FileDescriptor{ends[0]}, FileDescriptor{ends[1]}};
}

bool MessageSocket::sendBytes(std::span<const std::byte> bytes, int file) const {
    iovec part{const_cast<std::byte*>(bytes.data()), bytes.size()};
    msghdr packet{};
    packet.msg_iov = &part;
    packet.msg_iovlen = 1;
    FileRoom room;
    if (file >= 0) {
        packet.msg_control = room.bytes;
        packet.msg_controllen = sizeof room.bytes;
        cmsghdr* const header = CMSG_FIRSTHDR(&packet);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof file);
        std::memcpy(CMSG_DATA(header), &file, sizeof file);
    }
    ssize_t sent;
    do sent = sendmsg(descriptor_.get(), &packet, MSG_NOSIGNAL | MSG_DONTWAIT);
    while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(bytes.size());
}

MessageSocket::Received MessageSocket::receiveBytes(std::span<std::byte> bytes,
                                                    FileDescriptor* file) const {
    iovec part{bytes.data(), bytes.size()};
    msghdr packet{};
    packet.msg_iov = &part;
    packet.msg_iovlen = 1;
    FileRoom room;
    if (file) {
        packet.msg_control = room.bytes;
        packet.msg_controllen = sizeof room.bytes;
    }
    ssize_t received;
    do received = recvmsg(descriptor_.get(), &packet, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    while (received < 0 && errno == EINTR);
    if (received < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return Received::nothing;
    if (const cmsghdr* const header = file ? CMSG_FIRSTHDR(&packet) : nullptr)
        if (header->cmsg_type == SCM_RIGHTS && header->cmsg_len == CMSG_LEN(sizeof(int))) {
            int descriptor;
            std::memcpy(&descriptor, CMSG_DATA(header), sizeof descriptor);
            *file = FileDescriptor{descriptor};
        }
    const bool isWhole =
        received == static_cast<ssize_t>(bytes.size()) && (packet.msg_flags & MSG_TRUNC) == 0;
    return isWhole ? Received::message : Received::ended;
}

}  // namespace quorvane
