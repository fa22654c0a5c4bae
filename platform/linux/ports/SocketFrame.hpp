// Header of every message on a port's socket. docs/wire-format.md defines its bytes.
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
    std::int32_t status = 0;  // 0, or kPortTransportError for a reply over the size limit
    std::uint64_t sequence = 0;
    bool operator==(const ReplyHeader&) const = default;
};

FrameHeader encode(const RequestHeader& header);
FrameHeader encode(const ReplyHeader& header);

// Both return nullopt when the bytes violate the format, including its length limit.
std::optional<RequestHeader> decodeRequestHeader(
    std::span<const std::byte, kFrameHeaderBytes> bytes);
std::optional<ReplyHeader> decodeReplyHeader(std::span<const std::byte, kFrameHeaderBytes> bytes);

// Enlarges the socket's send buffer so that a state with artwork is sent in one piece and the two
// ends need not take turns. The system may grant less, which only costs speed.
void askForSendRoom(int socket);

// A message's bytes in order; parts may be empty.
using FrameParts = std::array<ByteView, 4>;

// Writes as much of the parts as the kernel takes at once, starting after their first `sent` bytes.
// Returns the number of bytes, or -1 with errno.
ssize_t sendFrameRest(int socket, const FrameParts& parts, std::size_t sent);

}  // namespace quorvane
