#include "QuorvaneKit/QuerySlot.hpp"

#include "QuorvaneKit/MessagePortSecret.hpp"
#include "platform/Wipe.hpp"

namespace quorvane {
namespace {

constexpr Duration kLongestWaitInQueue = std::chrono::seconds{5};
constexpr Duration kQuerySendTimeout = std::chrono::seconds{2};

}  // namespace

std::size_t chooseQuerySlot(const std::array<int, kQueryPortCount>& load,
                            std::optional<std::size_t> lastUsed) {
    const std::size_t first = lastUsed ? (*lastUsed + 1) % kQueryPortCount : 0;
    std::size_t chosen = first;
    for (std::size_t step = 1; step < kQueryPortCount; ++step) {
        const std::size_t slot = (first + step) % kQueryPortCount;
        if (load[slot] < load[chosen]) chosen = slot;
    }
    return chosen;
}

QueryPort::QueryPort(std::size_t index, std::string name, Services services)
    : index_(index), name_(std::move(name)), services_(std::move(services)) {}

std::optional<Bytes> QueryPort::readSecret(MessageType type) const {
    auto secret = MessagePortSecret::checked(services_.secret());
    if (!secret)
        services_.log.error("Query %d not sent: IPC connection secret unavailable",
                            std::to_underlying(type));
    return secret;
}

QueryOutcome QueryPort::send(MessageType type, ByteView payload, Duration timeout,
                             Instant enqueued) {
    const std::int32_t identifier = std::to_underlying(type);
    const auto portNumber = static_cast<std::int64_t>(index_);
    if (services_.now() - enqueued > kLongestWaitInQueue) {
        services_.log.error("Query %d not sent: it waited too long for query port %ld", identifier,
                            portNumber);
        return {.kind = QueryOutcome::Kind::expiredInQueue};
    }
    auto secret = readSecret(type);
    if (!secret) return {};
    if (remotePort_ == nullptr) remotePort_ = services_.connectPort(name_);
    if (remotePort_ == nullptr) {
        wipe(*secret);
        services_.log.error("Cannot send query %d: query port %ld not available", identifier,
                            portNumber);
        return {};
    }
    PortReply reply = remotePort_->send({.messageID = identifier,
                                         .secret = *secret,
                                         .body = payload,
                                         .sendTimeout = kQuerySendTimeout,
                                         .receiveTimeout = timeout,
                                         .awaitsReply = true});
    wipe(*secret);
    if (reply.status != kPortSuccess)
        services_.log.error("Query %d on query port %ld failed, status: %d", identifier, portNumber,
                            reply.status);
    // A port that was only slow is still the right one, and knows to skip the late reply.
    if (reply.status != kPortSuccess && reply.status != kPortReceiveTimeout) forgetRemotePort();
    return {
        .kind = QueryOutcome::Kind::sent, .status = reply.status, .reply = std::move(reply.body)};
}

QuerySlot::QuerySlot(std::size_t index, std::string name, const MakeSerialQueue& makeSerialQueue,
                     QueryPort::Services services)
    : port_(std::make_shared<QueryPort>(index, std::move(name), std::move(services))),
      queue_(makeSerialQueue(queryClientQueueLabel(index))) {}

void QuerySlot::send(MessageType type, Bytes payload, Duration timeout, Instant enqueued,
                     std::function<void(QueryOutcome)> done) {
    mayHoldRemotePort_ = true;
    // The port is held while it is used: the client may be destroyed meanwhile.
    queue_->async([weak = std::weak_ptr{port_}, type, payload = std::move(payload), timeout,
                   enqueued, done = std::move(done)] {
        if (const auto port = weak.lock()) done(port->send(type, payload, timeout, enqueued));
    });
}

void QuerySlot::forgetRemotePort() {
    if (!std::exchange(mayHoldRemotePort_, false)) return;
    queue_->async([weak = std::weak_ptr{port_}] {
        if (const auto port = weak.lock()) port->forgetRemotePort();
    });
}

}  // namespace quorvane
