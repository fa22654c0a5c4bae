// What stands behind MessagePortClient. Main thread only.
#pragma once

#include <vector>

#include "QuorvaneKit/link/DarwinNotificationObserver.hpp"
#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "QuorvaneKit/link/QuerySlot.hpp"
#include "QuorvaneKit/records/PlayerStateDecoder.hpp"

namespace quorvane {

// Whatever calls out (a send, a listener, a callback) may come back in, connect anew, or destroy
// the client. So each such call is followed by a look at whether this object still lives, and at
// `connection`, whether the port it was about is still the one that is held.
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
    // The action on a later turn of the main loop, if this object still lives then.
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
    std::uint64_t connection = 0;  // counts the ports held and dropped
    bool isStopped = false;        // since the last start
    bool isRequesting = false;
    bool requestsAgain = false;  // asked for while a request was under way
    bool isPolling = false;
    Bytes replyMemory;  // while polling; fresh from the system it costs more than what is read in

    std::vector<QuerySlot> querySlots;
    std::array<int, kQueryPortCount> querySlotLoad{};
    std::optional<std::size_t> lastQuerySlot;

    DarwinNotificationObserver stateChangedObserver;
};

}  // namespace quorvane
