// Implementation of MessagePortClient. Main thread only.
#pragma once

#include <vector>

#include "QuorvaneKit/link/DarwinNotificationObserver.hpp"
#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "QuorvaneKit/link/QuerySlot.hpp"
#include "QuorvaneKit/records/PlayerStateDecoder.hpp"

namespace quorvane {

// Every call out (a send, a listener, a callback) may re-enter, reconnect, or destroy the client.
// So after each such call the code checks that this object is still alive, and by `connection` that
// the port it used is still the current one.
struct MessagePortClient::State : std::enable_shared_from_this<MessagePortClient::State> {
    State(MessagePortClient& owner, std::string portBaseName,
          std::function<std::optional<Bytes>()> secret, Services services,
          std::optional<MessagePortLocalResponder> localResponder);
    // Does not wait for queries in flight.
    ~State();

    void start();
    void stop();
    void connect();
    void disconnect();
    void requestStateUpdate();
    void setPolling(bool isPolling);
    void sendCommand(MessageType type, std::int64_t value);
    void sendQuery(MessageType type, Bytes payload, Duration timeout,
                   std::function<void(QueryOutcome)> completion);

    void stateChangedNotice();
    std::optional<Bytes> readSecret() const;
    void requestOnce();
    void receive(PortReply reply);
    void queryFinished(std::size_t slot, const QueryOutcome& outcome);
    void forgetQueryPorts();
    // Runs the action on a later turn of the main loop, if this object is still alive.
    void later(std::function<void(State&)> action);

    MessagePortClient& owner;
    const std::string portBaseName;
    const std::function<std::optional<Bytes>()> secret;
    const Services services;
    const std::optional<MessagePortLocalResponder> localResponder;
    const Logger log;

    PlayerStateDecoder stateDecoder;
    std::optional<QuorvanePlayerState> playerState;
    Observable<bool> isConnected{false};
    std::int64_t portAttempts = 0;

    std::unique_ptr<RemotePort> remotePort;
    std::uint64_t connection = 0;  // +1 for each port held or dropped
    bool isStopped = false;        // since the last start
    bool isRequesting = false;
    bool requestsAgain = false;  // requested during another request
    bool isPolling = false;
    Bytes replyMemory;  // while polling; reallocating it costs more than reading a reply

    std::vector<QuerySlot> querySlots;
    std::array<int, kQueryPortCount> querySlotLoad{};
    std::optional<std::size_t> lastQuerySlot;

    DarwinNotificationObserver stateChangedObserver;
};

}  // namespace quorvane
