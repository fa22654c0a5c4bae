#include <zmq.h>

#include "bench/LinkRival.hpp"
#include "bench/ServerProcess.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {
namespace {

class ZeroMQCall final : public LinkRival {
public:
    ZeroMQCall(LinkShape shape, int processor, const std::filesystem::path& folder)
        : request_(shape.request, std::byte{1}),
          reply_(shape.reply, std::byte{2}),
          address_("ipc://" + (folder / "zeromq").string()),
          server_(processor, [this](const auto& ready) { serve(ready); }),
          context_(zmq_ctx_new()),
          socket_(zmq_socket(context_, ZMQ_REQ)) {
        if (zmq_connect(socket_, address_.c_str()) != 0) die("zmq_connect");
    }
    ~ZeroMQCall() override {
        zmq_close(socket_);
        zmq_ctx_term(context_);
    }

    void call() override {
        zmq_msg_t answer;
        zmq_msg_init(&answer);
        if (zmq_send(socket_, request_.data(), request_.size(), 0) < 0) die("zmq_send");
        if (zmq_msg_recv(&answer, socket_, 0) < 0) die("zmq_msg_recv");
        if (zmq_msg_size(&answer) != reply_.size()) std::abort();
        zmq_msg_close(&answer);
    }

private:
    void serve(const std::function<void()>& ready) const {
        void* const socket = zmq_socket(zmq_ctx_new(), ZMQ_REP);
        if (zmq_bind(socket, address_.c_str()) != 0) die("zmq_bind");
        ready();
        while (true) {
            zmq_msg_t message;
            zmq_msg_init(&message);
            if (zmq_msg_recv(&message, socket, 0) < 0) return;
            zmq_msg_close(&message);
            if (zmq_send(socket, reply_.data(), reply_.size(), 0) < 0) return;
        }
    }

    const Bytes request_;
    const Bytes reply_;
    const std::string address_;
    ServerProcess server_;
    void* context_;
    void* socket_;
};

}  // namespace

std::unique_ptr<LinkRival> makeZeroMQCall(LinkShape shape, int processor,
                                          const std::filesystem::path& folder) {
    return std::make_unique<ZeroMQCall>(shape, processor, folder);
}

}  // namespace quorvane
