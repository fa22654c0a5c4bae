// Small receive buffer of a port's socket, through which a short message arrives in one system
// call.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <span>

#include "platform/linux/ports/SocketFrame.hpp"

namespace quorvane {

class FrameBuffer {
public:
    // Bytes received and not yet used.
    std::span<std::byte> filled() { return std::span{bytes_}.subspan(begin_, end_ - begin_); }
    bool holdsHeader() const { return end_ - begin_ >= kFrameHeaderBytes; }
    // Requires `holdsHeader`.
    std::span<const std::byte, kFrameHeaderBytes> header() const {
        return std::span<const std::byte>{bytes_}.subspan(begin_).first<kFrameHeaderBytes>();
    }

    // Free space for more bytes; never empty unless the whole buffer is filled.
    std::span<std::byte> room() {
        if (begin_ > 0) {
            std::memmove(bytes_.data(), bytes_.data() + begin_, end_ - begin_);
            end_ -= begin_;
            begin_ = 0;
        }
        return std::span{bytes_}.subspan(end_);
    }
    void added(std::size_t count) { end_ += count; }
    void used(std::size_t count) {
        begin_ += count;
        if (begin_ == end_) begin_ = end_ = 0;
    }

private:
    static constexpr std::size_t kSize = 4096;
    std::array<std::byte, kSize> bytes_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

}  // namespace quorvane
