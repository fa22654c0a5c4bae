#include "QuorvaneKit/link/RequestRouter.hpp"

#include "QuorvaneKit/link/MessagePortWire.hpp"

namespace quorvane {

RequestRouter::RequestRouter(PortKind kind, const MessagePortHandlers& handlers,
                             const std::optional<Bytes>& expectedSecret, Logger log,
                             std::shared_ptr<CancellableWait> wait)
    : kind_(kind),
      handlers_(handlers),
      expectedSecret_(expectedSecret),
      log_(std::move(log)),
      wait_(std::move(wait)) {}

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
    if (isQuery(*type) != (kind_ == PortKind::query)) {
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
    if (!query.handler || wait_->isCancelled()) return Bytes{};
    // This thread owns the place of the answer. The handler holds it weakly, so that a late answer
    // is dropped.
    const auto place = std::make_shared<std::optional<std::optional<Bytes>>>();
    query.handler(copyOf(payload),
                  [weak = std::weak_ptr{place}, wait = wait_](std::optional<Bytes> reply) {
                      wait->update([&] {
                          const auto held = weak.lock();
                          if (held && !*held) *held = std::move(reply);
                      });
                  });
    if (wait_->waitFor(query.timeout, [&] { return place->has_value(); }))
        return std::move(**place);
    if (!wait_->isCancelled()) log_.error("%{public}s handler timed out", query.name);
    return Bytes{};
}

}  // namespace quorvane
