#include "QuorvaneKit/link/MessagePortClient.hpp"

#include "QuorvaneKit/link/MessagePortClientState.hpp"

namespace quorvane {

MessagePortClient::MessagePortClient(std::string_view portBaseName,
                                     std::function<std::optional<Bytes>()> secret,
                                     Services services,
                                     std::optional<MessagePortLocalResponder> localResponder)
    // Not make_shared: weak references from pending work then keep only the control block alive.
    : state_(new State{*this, std::string{portBaseName}, std::move(secret), std::move(services),
                       std::move(localResponder)}) {}

MessagePortClient::~MessagePortClient() = default;

void MessagePortClient::start() { state_->start(); }
void MessagePortClient::stop() { state_->stop(); }
void MessagePortClient::connect() { state_->connect(); }
void MessagePortClient::disconnect() { state_->disconnect(); }
void MessagePortClient::requestStateUpdate() { state_->requestStateUpdate(); }
void MessagePortClient::setPolling(bool isPolling) { state_->setPolling(isPolling); }

void MessagePortClient::perform(QuorvaneAction action) {
    state_->sendCommand(MessageType::performAction, std::to_underlying(action));
}

void MessagePortClient::setVolume(std::int64_t value) {
    state_->sendCommand(MessageType::setVolume, value);
}

void MessagePortClient::setRating(std::int64_t value) {
    state_->sendCommand(MessageType::setRating, value);
}

void MessagePortClient::sendQuery(MessageType type, Bytes payload, Duration timeout,
                                  std::function<void(QueryOutcome)> completion) {
    state_->sendQuery(type, std::move(payload), timeout, std::move(completion));
}

const Observable<bool>& MessagePortClient::isConnected() const { return state_->isConnected; }
Observable<bool>& MessagePortClient::isConnected() { return state_->isConnected; }

const std::optional<QuorvanePlayerState>& MessagePortClient::playerState() const {
    return state_->playerState;
}

std::int64_t MessagePortClient::portAttempts() const { return state_->portAttempts; }

}  // namespace quorvane
