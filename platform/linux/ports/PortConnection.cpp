#include "platform/linux/ports/PortConnection.hpp"

#include <sys/socket.h>

#include <algorithm>
#include <cerrno>

#include "platform/Wipe.hpp"

namespace quorvane {
namespace {

// A request begins with a secret, which stays in memory only while the request is handled.
constexpr std::size_t kWipedBytes = 32;

void wipeStart(std::span<std::byte> bytes) {
    wipe(bytes.first(std::min(bytes.size(), kWipedBytes)));
}

// Returns the number of bytes; 0 when none are available now; nullopt when the connection is over.
std::optional<std::size_t> receiveNow(int socket, std::span<std::byte> place) {
    const ssize_t count = recv(socket, place.data(), place.size(), MSG_DONTWAIT);
    if (count > 0) return static_cast<std::size_t>(count);
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return 0;
    return std::nullopt;
}

}  // namespace

PortConnection::PortConnection(FileDescriptor socket, pid_t peer, const PortLimits& limits,
                               PortMemory& memory)
    : socket_(std::move(socket)), peer_(peer), limits_(limits), memory_(memory) {}

PortConnection::~PortConnection() {
    dropBody();
    dropOutput();
    wipeStart(buffer_.filled());
}

bool PortConnection::serve(const PortHandler& handler) {
    if (output_) {
        if (!writeRest()) return false;
        if (output_) return true;
        deadline_.reset();
    } else if (!read()) {
        return false;
    }
    if (!answerComplete(handler)) return false;
    const bool isIdle = !request_ && buffer_.filled().empty();
    if (output_)
        return true;  // `write` has set its deadline
    else if (isIdle)
        deadline_.reset();
    else if (!deadline_)
        deadline_ = steadyNow() + limits_.requestTime;
    return true;
}

bool PortConnection::read() {
    if (!body_.empty()) return readBody();
    const auto count = receiveNow(socket_.get(), buffer_.room());
    if (!count) return false;
    buffer_.added(*count);
    return true;
}

bool PortConnection::readBody() {
    const auto count = receiveNow(socket_.get(), std::span{body_}.subspan(bodyFilled_));
    if (!count) return false;
    bodyFilled_ += *count;
    return true;
}

bool PortConnection::answerComplete(const PortHandler& handler) {
    while (!output_) {
        if (!request_) {
            if (!buffer_.holdsHeader()) return true;
            request_ = decodeRequestHeader(buffer_.header());
            if (!request_ || request_->sequence != ++sequence_) return false;
            buffer_.used(kFrameHeaderBytes);
            if (!beginBody(request_->length)) return false;
        }
        if (!body_.empty()) {
            if (bodyFilled_ < body_.size()) return true;
            if (!answer(handler, body_)) return false;
            dropBody();
        } else {
            const std::size_t length = request_->length;
            if (buffer_.filled().size() < length) return true;
            if (!answer(handler, buffer_.filled().first(length))) return false;
            buffer_.used(length);
        }
        request_.reset();
        if (!output_) deadline_.reset();
    }
    return true;
}

// A request longer than the buffer gets its own memory, whose pages stay untouched until bytes
// arrive.
bool PortConnection::beginBody(std::size_t length) {
    if (length <= buffer_.filled().size() + buffer_.room().size()) return true;
    auto buffer = memory_.takeBuffer(length);
    if (!buffer) return false;
    body_ = *std::move(buffer);
    const auto early = buffer_.filled();
    std::ranges::copy(early, body_.begin());
    bodyFilled_ = early.size();
    wipeStart(early);
    buffer_.used(early.size());
    return readBody();
}

void PortConnection::dropBody() {
    if (body_.empty()) return;
    wipeStart(body_);
    memory_.giveBackBuffer(std::exchange(body_, {}));
    bodyFilled_ = 0;
}

bool PortConnection::answer(const PortHandler& handler, std::span<std::byte> body) {
    PortAnswer reply = handler(request_->messageID, body);
    wipeStart(body);
    if (!request_->awaitsReply) return true;
    ReplyHeader header{.sequence = request_->sequence};
    if (reply.size() > kLargestBody) {
        header.status = kPortTransportError;
        reply = {};
    }
    header.length = static_cast<std::uint32_t>(reply.size());
    return write({.header = encode(header), .body = std::move(reply)});
}

bool PortConnection::write(Output output) {
    output_ = std::move(output);
    deadline_.reset();
    if (!writeRest()) return false;
    if (!output_) return true;
    output_->isCounted = memory_.replies.take(output_->body.size());
    deadline_ = steadyNow() + limits_.replyTime;
    return output_->isCounted;
}

bool PortConnection::writeRest() {
    const auto [before, shared, after] = output_->body.parts();
    const FrameParts parts{output_->header, before, shared, after};
    const std::size_t total = kFrameHeaderBytes + output_->body.size();
    while (output_->sent < total) {
        const ssize_t count = sendFrameRest(socket_.get(), parts, output_->sent);
        if (count < 0) return errno == EAGAIN;
        output_->sent += static_cast<std::size_t>(count);
    }
    dropOutput();
    return true;
}

void PortConnection::dropOutput() {
    if (output_ && output_->isCounted) memory_.replies.giveBack(output_->body.size());
    output_.reset();
}

}  // namespace quorvane
