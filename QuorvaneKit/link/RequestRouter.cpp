#include "QuorvaneKit/link/RequestRouter.hpp"

#include "QuorvaneKit/link/MessagePortWire.hpp"

namespace quorvane {

// Holder of a handler's answer. The port's thread owns it while it waits. The handler holds it
// weakly, so a late answer is dropped.
struct RequestRouter::PendingAnswer {
    explicit PendingAnswer(const MakeWaitFlag& makeFlag) : arrived(makeFlag()) {}

    void put(std::optional<Bytes> answer) {
        {
            const std::lock_guard guard{mutex};
            if (std::exchange(isAnswered, true)) return;
            reply = std::move(answer);
        }
        arrived->raise();
    }

    const std::unique_ptr<WaitFlag> arrived;
    std::mutex mutex;
    bool isAnswered = false;     // under mutex
    std::optional<Bytes> reply;  // under mutex
};

RequestRouter::RequestRouter(PortEndpoint endpoint, const MessagePortHandlers& handlers,
                             const std::optional<Bytes>& expectedSecret, Logger log,
                             MakeWaitFlag makeWaitFlag)
    : endpoint_(endpoint),
      handlers_(handlers),
      expectedSecret_(expectedSecret),
      log_(std::move(log)),
      makeWaitFlag_(std::move(makeWaitFlag)) {}

PortAnswer RequestRouter::answer(std::int32_t messageID, ByteView body) {
    const ByteView secret = expectedSecret_ ? ByteView{*expectedSecret_} : ByteView{};
    const auto payload = MessagePortWire::unwrap(body, secret);
    if (!payload) {
        log_.error("IPC: dropped message with missing/mismatched connection secret (type %d)",
                   messageID);
        return {};
    }
    const auto type = messageType(messageID);
    if (!type) {
        log_.error("Unknown message type: %d", messageID);
        return {};
    }
    if (isQuery(*type) != std::holds_alternative<QueryEndpoint>(endpoint_)) {
        log_.error("IPC: dropped message type %d sent to the wrong port", messageID);
        return {};
    }
    return dispatch(*type, *payload);
}

PortAnswer RequestRouter::dispatch(MessageType type, ByteView payload) {
    const MessagePortHandlers& to = handlers_;
    const auto byte =
        payload.empty() ? std::nullopt : std::optional{std::to_integer<std::int64_t>(payload[0])};
    switch (type) {
        case MessageType::requestState: return state();
        case MessageType::performAction:
            if (const auto action = byte.and_then(quorvaneAction); action && to.onActionReceived)
                to.onActionReceived(*action);
            return {};
        case MessageType::setVolume:
            if (byte && to.onVolumeChangeReceived) to.onVolumeChangeReceived(*byte);
            return {};
        case MessageType::setRating:
            if (byte && to.onRatingChangeReceived) to.onRatingChangeReceived(*byte);
            return {};
        case MessageType::requestWidgetData:
            return to.onWidgetDataRequested ? to.onWidgetDataRequested().value_or(Bytes{})
                                            : Bytes{};
        case MessageType::lastFmQuery:
            return ask({"Last.fm query", to.onLastFmQueryReceived, to.lastFmTimeout}, payload)
                .value_or(Bytes{});
        case MessageType::lastFmCall:
            return ask({"Last.fm call", to.onLastFmCallReceived, to.lastFmTimeout}, payload)
                .value_or(Bytes{});
        case MessageType::lastFmImage:
            return ask({"Last.fm image", to.onLastFmImageReceived, to.lastFmTimeout}, payload)
                .value_or(Bytes{});
        case MessageType::historyQuery: return history(payload);
        case MessageType::lockScreenHello:
            return ask({"Lock-screen hello", to.onLockScreenHelloReceived,
                        to.lockScreenHelloTimeout},
                       payload)
                .value_or(Bytes{});
    }
    std::unreachable();
}

PortAnswer RequestRouter::state() {
    if (!handlers_.onStateRequested) return {};
    const auto state = handlers_.onStateRequested();
    if (!state) return {};
    return stateEncoder_.encode(*state).value_or(PortAnswer{});
}

Bytes RequestRouter::history(ByteView payload) {
    auto reply =
        ask({"History query", handlers_.onHistoryQueryReceived, handlers_.historyQueryTimeout},
            payload);
    if (!reply) log_.error("History query dropped: undecodable request");
    return std::move(reply).value_or(Bytes{});
}

std::optional<Bytes> RequestRouter::ask(const Query& query, ByteView payload) {
    if (!query.handler) return Bytes{};
    const auto pending = makePendingAnswer();
    if (pending == nullptr) return Bytes{};
    query.handler(copyOf(payload), [weak = std::weak_ptr{pending}](std::optional<Bytes> reply) {
        if (const auto place = weak.lock()) place->put(std::move(reply));
    });
    const bool isRaised = pending->arrived->waitFor(query.timeout);
    if (!isRaised) log_.error("%{public}s handler timed out", query.name);
    const std::lock_guard guard{pending->mutex};
    // Raised without an answer: the wait was cancelled.
    if (!isRaised || !pending->isAnswered) return Bytes{};
    return std::move(pending->reply);
}

std::shared_ptr<RequestRouter::PendingAnswer> RequestRouter::makePendingAnswer() {
    auto pending = std::make_shared<PendingAnswer>(makeWaitFlag_);
    const std::lock_guard guard{mutex_};
    if (isCancelled_) return nullptr;
    pending_ = pending;
    return pending;
}

void RequestRouter::cancel() {
    std::shared_ptr<PendingAnswer> pending;
    {
        const std::lock_guard guard{mutex_};
        isCancelled_ = true;
        pending = pending_.lock();
    }
    if (pending != nullptr) pending->arrived->raise();
}

}  // namespace quorvane
