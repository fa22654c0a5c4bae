#include "QuorvaneKit/link/MessagePortClient.hpp"

#include <algorithm>

#include "QuorvaneKit/link/Identifiers.hpp"
#include "QuorvaneKit/link/MessagePortSecret.hpp"
#include "QuorvaneKit/link/QuorvaneDarwinNotification.hpp"
#include "platform/Wipe.hpp"

namespace quorvane {
namespace {

constexpr Duration kSendTimeout = std::chrono::seconds{1};
constexpr Duration kStateReceiveTimeout = std::chrono::seconds{1};

std::string_view titleOf(const std::optional<QuorvanePlayerState>& state) {
    return state && state->track ? std::string_view{state->track->title} : "none";
}

}  // namespace

// After each call out the code checks by `connection_` that the port it used is still the current
// one.

MessagePortClient::MessagePortClient(std::string_view portBaseName,
                                     std::function<std::optional<Bytes>()> secret,
                                     Services services,
                                     std::optional<MessagePortLocalResponder> localResponder)
    : portBaseName_(portBaseName),
      secret_(std::move(secret)),
      services_(std::move(services)),
      localResponder_(std::move(localResponder)),
      log_(services_.log, kKitLogSubsystem, "MessagePortClient"),
      stateChangedObserver_(services_.darwinNotices, QuorvaneDarwinNotification::playerStateChanged,
                            [this] { stateChangedNotice(); }) {
    for (std::size_t index = 0; index < kQueryPortCount; ++index)
        querySlots_.emplace_back(
            index, queryPortName(portBaseName_, index), services_.makeSerialQueue,
            QuerySlot::Services{services_.connectPort, secret_, services_.clock.now, log_});
}

void MessagePortClient::start() {
    if (localResponder_) {
        log_.info("Message port client answers locally; not connecting");
        return;
    }
    log_.info("Starting message port client");
    isStopped_ = false;
    connect();
    // If it was stopped during the wait, it stays stopped.
    if (isStopped_) return;
    stateChangedObserver_.start();
}

// A notice does not restart a stopped client.
void MessagePortClient::stop() {
    log_.info("Stopping message port client");
    isStopped_ = true;
    stateChangedObserver_.stop();
    disconnect();
}

void MessagePortClient::connect() {
    ++portAttempts_;
    if (localResponder_) return;
    // First, because on macOS both ports of one name would be the same object.
    const std::uint64_t mine = ++connection_;
    remotePort_.reset();
    auto port = services_.connectPort(portBaseName_);
    if (port == nullptr) {
        log_.error("Message port not available");
        isConnected_.set(false);
        return;
    }
    remotePort_ = std::move(port);
    isConnected_.set(true);
    log_.info("Connected to message port");
    if (connection_ == mine) requestStateUpdate();
}

void MessagePortClient::disconnect() {
    ++connection_;
    remotePort_.reset();
    forgetQueryPorts();
    isConnected_.set(false);
}

void MessagePortClient::forgetQueryPorts() {
    for (QuerySlot& slot : querySlots_) slot.forgetRemotePort();
}

void MessagePortClient::stateChangedNotice() {
    log_.info("Darwin notification received: playerStateChanged");
    if (isConnected_.get()) {
        requestStateUpdate();
    } else {
        log_.info("Not connected, cannot request state update");
        connect();
    }
}

// Returns a secret of the right length for one send; the caller wipes it afterwards.
std::optional<Bytes> MessagePortClient::readSecret() const {
    auto bytes = secret_();
    if (!bytes) {
        log_.error(
            "IPC connection secret unavailable (App Group container unreadable); cannot send to "
            "main app");
        return std::nullopt;
    }
    bytes = MessagePortSecret::checked(std::move(bytes));
    if (!bytes) log_.error("IPC connection secret malformed; cannot send");
    return bytes;
}

void MessagePortClient::requestStateUpdate() {
    if (remotePort_ == nullptr) {
        log_.info("requestStateUpdate: no remote port");
        return;
    }
    // Called from inside a waiting send. One more request after it brings the same state as this
    // one. Sending here would nest a wait for every notice.
    if (isRequesting_) {
        requestsAgain_ = true;
        return;
    }
    isRequesting_ = true;
    requestOnce();
    isRequesting_ = false;
    if (std::exchange(requestsAgain_, false))
        later([this] {
            if (remotePort_ != nullptr) requestStateUpdate();
        });
}

void MessagePortClient::setPolling(bool isNow) {
    isPolling_ = isNow;
    if (!isPolling_) replyMemory_ = Bytes{};  // not {}, which keeps the memory
}

void MessagePortClient::requestOnce() {
    auto ownSecret = readSecret();
    if (!ownSecret) return;
    const std::uint64_t mine = connection_;
    PortReply reply = remotePort_->send({.messageID = std::to_underlying(MessageType::requestState),
                                         .secret = *ownSecret,
                                         .sendTimeout = kSendTimeout,
                                         .receiveTimeout = kStateReceiveTimeout,
                                         .awaitsReply = true,
                                         .replyMemory = std::exchange(replyMemory_, {})});
    wipe(*ownSecret);
    if (connection_ == mine) receive(std::move(reply));
}

void MessagePortClient::receive(PortReply reply) {
    if (reply.status != kPortSuccess) {
        log_.error("Message port disconnected, status: %d", reply.status);
        disconnect();
        return;
    }
    if (!reply.body) return;
    auto decoded = stateDecoder_.decode(*reply.body);
    if (isPolling_) replyMemory_ = *std::move(reply.body);
    if (!decoded) return;
    const auto previous = std::exchange(playerState_, *std::move(decoded));
    log_.info("State received - track: %s -> %s, position: %fs", titleOf(previous),
              titleOf(playerState_), playerState_->playerPosition);
    // A copy, because the callback may bring a newer state.
    const QuorvanePlayerState state = *playerState_;
    if (onStateChanged) onStateChanged(state);
}

void MessagePortClient::sendCommand(MessageType type, std::int64_t value) {
    if (remotePort_ == nullptr) {
        log_.info("Cannot send message: not connected");
        return;
    }
    const auto payload = static_cast<std::byte>(std::clamp<std::int64_t>(value, 0, 255));
    auto ownSecret = readSecret();
    if (!ownSecret) return;
    const std::uint64_t mine = connection_;
    const PortReply reply = remotePort_->send({.messageID = std::to_underlying(type),
                                               .secret = *ownSecret,
                                               .body = {&payload, 1},
                                               .sendTimeout = kSendTimeout});
    wipe(*ownSecret);
    if (reply.status == kPortSuccess || connection_ != mine) return;
    log_.error("Failed to send message, status: %d", reply.status);
    disconnect();
}

void MessagePortClient::sendQuery(MessageType type, Bytes payload, Duration timeout,
                                  std::function<void(QueryOutcome)> completion) {
    const auto refuse = [&] { later([completion] { completion({}); }); };
    if (!isQuery(type)) {
        log_.error("sendQuery: message type %d is not a query", std::to_underlying(type));
        return refuse();
    }
    if (localResponder_) {
        log_.info("sendQuery: refused, the client answers locally");
        return refuse();
    }
    const std::size_t slot = chooseQuerySlot(querySlotLoad_, lastQuerySlot_);
    lastQuerySlot_ = slot;
    ++querySlotLoad_[slot];
    querySlots_[slot].send(
        type, std::move(payload), timeout, services_.clock.now(),
        [this, life = life_.watch(), mainThread = services_.mainThread, slot,
         completion = std::move(completion)](QueryOutcome outcome) {
            mainThread.post([this, life, slot, completion, outcome = std::move(outcome)] {
                if (life.isOver()) return;
                queryFinished(slot, outcome);
                completion(outcome);
            });
        });
}

void MessagePortClient::queryFinished(std::size_t slot, const QueryOutcome& outcome) {
    --querySlotLoad_[slot];
    // One dead port means that the main application has quit, so the other ports are looked up
    // again too.
    const bool portHasDied = outcome.status == kPortIsInvalid ||
                             outcome.status == kPortTransportError ||
                             outcome.status == kPortBecameInvalid;
    if (portHasDied) forgetQueryPorts();
}

void MessagePortClient::later(std::function<void()> action) {
    services_.mainThread.post([life = life_.watch(), action = std::move(action)] {
        if (!life.isOver()) action();
    });
}

}  // namespace quorvane
