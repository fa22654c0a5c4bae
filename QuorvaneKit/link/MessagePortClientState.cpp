#include "QuorvaneKit/link/MessagePortClientState.hpp"

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

// Only the client itself holds its state for longer than an expression. So the state is destroyed
// together with the client, and weak holders can detect that.
template <typename T>
T* pointerIfAlive(const std::weak_ptr<T>& weak) {
    return weak.lock().get();
}

}  // namespace

MessagePortClient::State::State(MessagePortClient& itsOwner, std::string baseName,
                                std::function<std::optional<Bytes>()> readSecret,
                                Services itsServices,
                                std::optional<MessagePortLocalResponder> responder)
    : owner(itsOwner),
      portBaseName(std::move(baseName)),
      secret(std::move(readSecret)),
      services(std::move(itsServices)),
      localResponder(std::move(responder)),
      log(services.log, kKitLogSubsystem, "MessagePortClient"),
      stateChangedObserver(services.darwinNotices,
                           std::string{rawValue(QuorvaneDarwinNotification::playerStateChanged)},
                           [this] { stateChangedNotice(); }) {
    for (std::size_t index = 0; index < kQueryPortCount; ++index)
        querySlots.emplace_back(
            index, queryPortName(portBaseName, index), services.makeSerialQueue,
            QueryPort::Services{services.connectPort, secret, services.clock.now, log});
}

MessagePortClient::State::~State() {
    for (QuerySlot& slot : querySlots) slot.cancel();
}

void MessagePortClient::State::start() {
    if (localResponder) {
        log.info("Message port client answers locally; not connecting");
        return;
    }
    log.info("Starting message port client");
    isStopped = false;
    const std::weak_ptr alive = weak_from_this();
    connect();
    // If it was stopped during the wait, it stays stopped.
    if (alive.expired() || isStopped) return;
    stateChangedObserver.start();
}

// A notice does not restart a stopped client.
void MessagePortClient::State::stop() {
    log.info("Stopping message port client");
    isStopped = true;
    stateChangedObserver.stop();
    disconnect();
}

void MessagePortClient::State::connect() {
    ++portAttempts;
    if (localResponder) return;
    // First, because on macOS both ports of one name would be the same object.
    remotePort.reset();
    auto port = services.connectPort(portBaseName);
    if (port == nullptr) {
        log.error("Message port not available");
        isConnected.set(false);
        return;
    }
    const std::weak_ptr alive = weak_from_this();
    const std::uint64_t mine = ++connection;
    remotePort = std::move(port);
    isConnected.set(true);
    if (alive.expired()) return;
    log.info("Connected to message port");
    if (connection == mine) requestStateUpdate();
}

void MessagePortClient::State::disconnect() {
    ++connection;
    remotePort.reset();
    forgetQueryPorts();
    isConnected.set(false);
}

void MessagePortClient::State::forgetQueryPorts() {
    for (QuerySlot& slot : querySlots) slot.forgetRemotePort();
}

void MessagePortClient::State::stateChangedNotice() {
    log.info("Darwin notification received: playerStateChanged");
    if (isConnected.get()) {
        requestStateUpdate();
    } else {
        log.info("Not connected, cannot request state update");
        connect();
    }
}

// Returns a secret of the right length for one send; the caller wipes it afterwards.
std::optional<Bytes> MessagePortClient::State::readSecret() const {
    auto bytes = secret();
    if (!bytes) {
        log.error(
            "IPC connection secret unavailable (App Group container unreadable); cannot send to "
            "main app");
        return std::nullopt;
    }
    bytes = MessagePortSecret::checked(std::move(bytes));
    if (!bytes) log.error("IPC connection secret malformed; cannot send");
    return bytes;
}

void MessagePortClient::State::requestStateUpdate() {
    if (remotePort == nullptr) {
        log.info("requestStateUpdate: no remote port");
        return;
    }
    // Called from inside a waiting send. One more request after it brings the same state as this
    // one. Sending here would nest a wait for every notice.
    if (isRequesting) {
        requestsAgain = true;
        return;
    }
    const std::weak_ptr alive = weak_from_this();
    isRequesting = true;
    requestOnce();
    if (alive.expired()) return;
    isRequesting = false;
    if (std::exchange(requestsAgain, false))
        later([](State& state) {
            if (state.remotePort != nullptr) state.requestStateUpdate();
        });
}

void MessagePortClient::State::setPolling(bool isNow) {
    isPolling = isNow;
    if (!isPolling) replyMemory = Bytes{};  // not {}, which keeps the memory
}

void MessagePortClient::State::requestOnce() {
    auto ownSecret = readSecret();
    if (!ownSecret) return;
    const std::weak_ptr alive = weak_from_this();
    const std::uint64_t mine = connection;
    PortReply reply = remotePort->send({.messageID = std::to_underlying(MessageType::requestState),
                                        .secret = *ownSecret,
                                        .sendTimeout = kSendTimeout,
                                        .receiveTimeout = kStateReceiveTimeout,
                                        .awaitsReply = true,
                                        .replyMemory = std::exchange(replyMemory, {})});
    wipe(*ownSecret);
    if (!alive.expired() && connection == mine) receive(std::move(reply));
}

void MessagePortClient::State::receive(PortReply reply) {
    if (reply.status != kPortSuccess) {
        log.error("Message port disconnected, status: %d", reply.status);
        disconnect();
        return;
    }
    if (!reply.body) return;
    auto decoded = stateDecoder.decode(*reply.body);
    if (isPolling) replyMemory = *std::move(reply.body);
    if (!decoded) return;
    const auto previous = std::exchange(playerState, *std::move(decoded));
    log.info("State received - track: %s -> %s, position: %fs", titleOf(previous),
             titleOf(playerState), playerState->playerPosition);
    // Copies, because the callback may replace itself or the state, or destroy the client.
    const auto callback = owner.onStateChanged;
    const QuorvanePlayerState state = *playerState;
    if (callback) callback(state);
}

void MessagePortClient::State::sendCommand(MessageType type, std::int64_t value) {
    if (remotePort == nullptr) {
        log.info("Cannot send message: not connected");
        return;
    }
    const auto payload = static_cast<std::byte>(std::clamp<std::int64_t>(value, 0, 255));
    auto ownSecret = readSecret();
    if (!ownSecret) return;
    const std::weak_ptr alive = weak_from_this();
    const std::uint64_t mine = connection;
    const PortReply reply = remotePort->send({.messageID = std::to_underlying(type),
                                              .secret = *ownSecret,
                                              .body = {&payload, 1},
                                              .sendTimeout = kSendTimeout});
    wipe(*ownSecret);
    if (reply.status == kPortSuccess || alive.expired() || connection != mine) return;
    log.error("Failed to send message, status: %d", reply.status);
    disconnect();
}

void MessagePortClient::State::sendQuery(MessageType type, Bytes payload, Duration timeout,
                                         std::function<void(QueryOutcome)> completion) {
    const auto refuse = [&] { later([completion](State&) { completion({}); }); };
    if (!isQuery(type)) {
        log.error("sendQuery: message type %d is not a query", std::to_underlying(type));
        return refuse();
    }
    if (localResponder) {
        log.info("sendQuery: refused, the client answers locally");
        return refuse();
    }
    const std::size_t slot = chooseQuerySlot(querySlotLoad, lastQuerySlot);
    lastQuerySlot = slot;
    ++querySlotLoad[slot];
    querySlots[slot].send(
        type, std::move(payload), timeout, services.clock.now(),
        [weak = weak_from_this(), mainThread = services.mainThread, slot,
         completion = std::move(completion)](QueryOutcome outcome) {
            mainThread.post([weak, slot, completion, outcome = std::move(outcome)] {
                State* const self = pointerIfAlive(weak);
                if (self == nullptr) return;
                self->queryFinished(slot, outcome);
                completion(outcome);
            });
        });
}

void MessagePortClient::State::queryFinished(std::size_t slot, const QueryOutcome& outcome) {
    --querySlotLoad[slot];
    // One dead port means that the main application has quit, so the other ports are looked up
    // again too.
    const bool portHasDied = outcome.status == kPortIsInvalid ||
                             outcome.status == kPortTransportError ||
                             outcome.status == kPortBecameInvalid;
    if (portHasDied) forgetQueryPorts();
}

void MessagePortClient::State::later(std::function<void(State&)> action) {
    services.mainThread.post([weak = weak_from_this(), action = std::move(action)] {
        if (State* const self = pointerIfAlive(weak)) action(*self);
    });
}

}  // namespace quorvane
