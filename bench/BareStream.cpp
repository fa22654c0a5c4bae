// A bare Unix stream: the lower bound for a request and its reply.
#include <sys/socket.h>

#include "bench/LinkRival.hpp"
#include "bench/ServerProcess.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {
namespace {

void readAll(int socket, std::byte* place, std::size_t size) {
    while (size > 0) {
        const ssize_t count = read(socket, place, size);
        if (count <= 0) _exit(0);
        place += count;
        size -= static_cast<std::size_t>(count);
    }
}

void writeAll(int socket, const std::byte* place, std::size_t size) {
    while (size > 0) {
        const ssize_t count = write(socket, place, size);
        if (count <= 0) _exit(0);
        place += count;
        size -= static_cast<std::size_t>(count);
    }
}

class BareStream final : public LinkRival {
public:
    BareStream(LinkShape shape, int processor)
        : request_(shape.request, std::byte{1}),
          reply_(shape.reply, std::byte{2}),
          server_(processor, [this](const auto& ready) { serve(ready); }) {
        close(ends_[1]);
    }
    ~BareStream() override { close(ends_[0]); }

    void call() override {
        writeAll(ends_[0], request_.data(), request_.size());
        readAll(ends_[0], reply_.data(), reply_.size());
    }

private:
    struct Ends {
        Ends() {
            if (socketpair(AF_UNIX, SOCK_STREAM, 0, sockets) != 0) die("socketpair");
        }
        int operator[](int index) const { return sockets[index]; }
        int sockets[2];
    };

    void serve(const std::function<void()>& ready) {
        close(ends_[0]);
        ready();
        while (true) {
            readAll(ends_[1], request_.data(), request_.size());
            writeAll(ends_[1], reply_.data(), reply_.size());
        }
    }

    Bytes request_;
    Bytes reply_;
    const Ends ends_;
    ServerProcess server_;
};

}  // namespace

std::unique_ptr<LinkRival> makeBareStream(LinkShape shape, int processor) {
    return std::make_unique<BareStream>(shape, processor);
}

}  // namespace quorvane
