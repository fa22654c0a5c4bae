// The header in front of every message on a port's socket. docs/wire-format.md gives its bytes.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/Bytes.hpp"

namespace quorvane {

inline constexpr std::size_t kFrameHeaderBytes = 24;
inline constexpr std::size_t kLargestBody = 32 * 1024 * 1024;

using FrameHeader = std::array<std::byte, kFrameHeaderBytes>;

struct RequestHeader {
    std::uint32_t length = 0;  // of the body
    std::int32_t messageID = 0;
    bool awaitsReply = false;
    std::uint64_t sequence = 0;
    bool operator==(const RequestHeader&) const = default;
};

struct ReplyHeader {
    std::uint32_t length = 0;
    std::int32_t status = 0;  // 0, or kPortTransportError in place of a reply over the bound
    std::uint64_t sequence = 0;
    bool operator==(const ReplyHeader&) const = default;
};

FrameHeader encode(const RequestHeader& header);
FrameHeader encode(const ReplyHeader& header);

// Nothing when the bytes break a rule of the format, the bound of the length among them.
std::optional<RequestHeader> decodeRequestHeader(
    std::span<const std::byte, kFrameHeaderBytes> bytes);
std::optional<ReplyHeader> decodeReplyHeader(std::span<const std::byte, kFrameHeaderBytes> bytes);

// Room in the kernel for what a socket sends: a state with artwork goes out in one piece then,
// where both ends would take turns otherwise. As far as the system allows; less is slower, nothing
// else.
void askForSendRoom(int socket);

// A message's bytes in order; parts may be empty.
using FrameParts = std::array<ByteView, 4>;

// Writes as much of the parts as the kernel takes at once, beginning after the first `sent` bytes
// of them all. The number of bytes, or -1 with errno.
ssize_t sendFrameRest(int socket, const FrameParts& parts, std::size_t sent);

}  // namespace quorvane
