// The link itself, measured as its rivals are.
#include "QuorvaneKit/link/MessagePortWire.hpp"
#include "bench/LinkRival.hpp"
#include "bench/ServerProcess.hpp"
#include "platform/linux/ports/MessagePortsLinux.hpp"

namespace quorvane {
namespace {

constexpr char kPortName[] = "bench";

const Bytes& secret() {
    static const Bytes bytes(MessagePortWire::kSecretLength, std::byte{7});
    return bytes;
}

class PortCall final : public LinkRival {
public:
    PortCall(LinkShape shape, int processor, const std::filesystem::path& folder)
        : payload_(shape.request - MessagePortWire::kSecretLength, std::byte{1}),
          replySize_(shape.reply),
          server_(processor, [&](const auto& ready) { serve(folder, ready); }),
          port_(makeConnectPortLinux(folder)(kPortName)) {
        if (port_ == nullptr) die("connecting the port");
    }

    void call() override {
        const PortReply reply = port_->send({.messageID = 1,
                                             .secret = secret(),
                                             .body = payload_,
                                             .sendTimeout = std::chrono::seconds{1},
                                             .receiveTimeout = std::chrono::seconds{1},
                                             .awaitsReply = true});
        if (reply.status != kPortSuccess || !reply.body || reply.body->size() != replySize_) {
            std::fprintf(stderr, "a call failed with status %d\n", reply.status);
            std::exit(1);
        }
    }

private:
    void serve(const std::filesystem::path& folder, const std::function<void()>& ready) {
        const auto handler = [this](std::int32_t, ByteView body) {
            return MessagePortWire::unwrap(body, secret()) ? Bytes(replySize_) : Bytes{};
        };
        const auto port = makeOpenPortLinux(folder)(kPortName, handler);
        if (port == nullptr) die("opening the port");
        ready();
        port->run();
    }

    const Bytes payload_;
    const std::size_t replySize_;
    ServerProcess server_;
    std::unique_ptr<RemotePort> port_;
};

}  // namespace

std::unique_ptr<LinkRival> makePortCall(LinkShape shape, int processor,
                                        const std::filesystem::path& folder) {
    return std::make_unique<PortCall>(shape, processor, folder);
}

}  // namespace quorvane
