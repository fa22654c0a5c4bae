#include "QuorvaneKit/link/QuerySlot.hpp"

#include "QuorvaneKit/link/MessagePortSecret.hpp"
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

QuerySlot::QuerySlot(std::size_t index, std::string name, const MakeSerialQueue& makeSerialQueue,
                     Services services)
    : index_(static_cast<std::int64_t>(index)),
      name_(std::move(name)),
      services_(std::move(services)),
      queue_(makeSerialQueue(queryClientQueueLabel(index))) {}

QuerySlot::~QuerySlot() {
    const std::lock_guard guard{mutex_};
    isCancelled_ = true;
    if (remotePort_) remotePort_->cancel();
}

void QuerySlot::send(MessageType type, Bytes payload, Duration timeout, Instant enqueued,
                     std::function<void(QueryOutcome)> done) {
    const bool isQueued =
        queue_->async([this, type, payload = std::move(payload), timeout, enqueued, done] {
            done(sendNow(type, payload, timeout, enqueued));
        });
    if (isQueued)
        mayHoldRemotePort_ = true;
    else
        done(notAvailable(type));
}

void QuerySlot::forgetRemotePort() {
    if (mayHoldRemotePort_) mayHoldRemotePort_ = !queue_->async([this] { dropRemotePort(); });
}

QueryOutcome QuerySlot::sendNow(MessageType type, ByteView payload, Duration timeout,
                                Instant enqueued) {
    const std::int32_t identifier = std::to_underlying(type);
    if (services_.now() - enqueued > kLongestWaitInQueue) {
        services_.log.error("Query %d not sent: it waited too long for query port %ld", identifier,
                            index_);
        return {.kind = QueryOutcome::Kind::expiredInQueue};
    }
    auto secret = readSecret(type);
    if (!secret) return {};
    RemotePort* const port = connectedPort();
    if (port == nullptr) {
        wipe(*secret);
        return notAvailable(type);
    }
    PortReply reply = port->send({.messageID = identifier,
                                  .secret = *secret,
                                  .body = payload,
                                  .sendTimeout = kQuerySendTimeout,
                                  .receiveTimeout = timeout,
                                  .awaitsReply = true});
    wipe(*secret);
    if (reply.status != kPortSuccess && !isCancelled())
        services_.log.error("Query %d on query port %ld failed, status: %d", identifier, index_,
                            reply.status);
    // A port that was only slow is still valid, and skips the late reply.
    if (reply.status != kPortSuccess && reply.status != kPortReceiveTimeout) dropRemotePort();
    return {
        .kind = QueryOutcome::Kind::sent, .status = reply.status, .reply = std::move(reply.body)};
}

std::optional<Bytes> QuerySlot::readSecret(MessageType type) const {
    auto secret = MessagePortSecret::checked(services_.secret());
    if (!secret)
        services_.log.error("Query %d not sent: IPC connection secret unavailable",
                            std::to_underlying(type));
    return secret;
}

QueryOutcome QuerySlot::notAvailable(MessageType type) const {
    services_.log.error("Cannot send query %d: query port %ld not available",
                        std::to_underlying(type), index_);
    return {};
}

// Returns null when the port cannot be connected, and after a cancel.
RemotePort* QuerySlot::connectedPort() {
    auto made = remotePort_ ? nullptr : services_.connectPort(name_);
    const std::lock_guard guard{mutex_};
    if (made) remotePort_ = std::move(made);
    return isCancelled_ ? nullptr : remotePort_.get();
}

void QuerySlot::dropRemotePort() {
    const std::lock_guard guard{mutex_};
    remotePort_.reset();
}

bool QuerySlot::isCancelled() const {
    const std::lock_guard guard{mutex_};
    return isCancelled_;
}

}  // namespace quorvane
