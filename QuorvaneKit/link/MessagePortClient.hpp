// The add-on's end of the link to the main application. Holds the last player state, tracks whether
// the main application is there, and sends commands. Queries use four separate ports, so that a
// slow query never delays the state.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "QuorvaneKit/link/DarwinNotificationObserver.hpp"
#include "QuorvaneKit/link/QuerySlot.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "QuorvaneKit/records/PlayerStateDecoder.hpp"
#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "platform/Clock.hpp"
#include "platform/DarwinNotices.hpp"
#include "platform/LifeToken.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/MessagePort.hpp"
#include "platform/Observable.hpp"
#include "platform/SerialQueue.hpp"

namespace quorvane {

// Answers queries inside the process; a client that has a responder never connects.
struct MessagePortLocalResponder {
    using Operation = std::function<void(Bytes request, std::function<void(Bytes)> completion)>;
    Operation history;
    Operation lastFmCall;
    Operation lastFmImage;
};

// Main thread only, except that queries are sent on their slots' queues. Every call out (a send
// that waits, a listener, a callback) may run the main loop or other code, which may re-enter or
// reconnect the client but does not destroy it. Destroying the client cancels its queries.
class MessagePortClient {
public:
    struct Services {
        LogSink log;
        ConnectPort connectPort;
        MakeSerialQueue makeSerialQueue;
        MainThread mainThread;
        Clock clock;
        DarwinNotices darwinNotices;
    };

    // `secret` reads the connection secret each time. It is called on the main thread and on the
    // slots' queues.
    MessagePortClient(std::string_view portBaseName, std::function<std::optional<Bytes>()> secret,
                      Services services,
                      std::optional<MessagePortLocalResponder> localResponder = std::nullopt);

    // Connects and listens for "playerStateChanged". Calling it again while disconnected retries
    // the connection.
    void start();
    // Disconnects and stops listening.
    void stop();
    void connect();
    void disconnect();
    // Blocks for at most the send and receive timeouts, one second each. A call from inside another
    // request's wait sends one more request on a later turn of the main loop.
    void requestStateUpdate();
    // While polling, the client reuses the memory of a reply for the next one.
    void setPolling(bool isPolling);

    void perform(QuorvaneAction action) {
        sendCommand(MessageType::performAction, std::to_underlying(action));
    }
    void playPause() { perform(QuorvaneAction::playPause); }
    void nextTrack() { perform(QuorvaneAction::nextTrack); }
    void previousTrack() { perform(QuorvaneAction::previousTrack); }
    void increaseVolume() { perform(QuorvaneAction::increaseVolume); }
    void decreaseVolume() { perform(QuorvaneAction::decreaseVolume); }
    void toggleMute() { perform(QuorvaneAction::toggleMute); }
    void toggleLove() { perform(QuorvaneAction::toggleLove); }
    void toggleDislike() { perform(QuorvaneAction::toggleDislike); }
    void increaseRating() { perform(QuorvaneAction::increaseRating); }
    void decreaseRating() { perform(QuorvaneAction::decreaseRating); }
    void removeRating() { perform(QuorvaneAction::removeRating); }
    void toggleShuffle() { perform(QuorvaneAction::toggleShuffle); }
    void toggleRepeat() { perform(QuorvaneAction::toggleRepeat); }
    void activatePlayer() { perform(QuorvaneAction::activatePlayer); }
    void switchPlayer() { perform(QuorvaneAction::switchPlayer); }
    // Sent as 0...255.
    void setVolume(std::int64_t value) { sendCommand(MessageType::setVolume, value); }
    void setRating(std::int64_t value) { sendCommand(MessageType::setRating, value); }

    // The completion runs once, on the main thread, never inside the call. It does not run after
    // the client is destroyed.
    void sendQuery(MessageType type, Bytes payload, Duration timeout,
                   std::function<void(QueryOutcome)> completion);

    const Observable<bool>& isConnected() const { return isConnected_; }
    Observable<bool>& isConnected() { return isConnected_; }
    const std::optional<QuorvanePlayerState>& playerState() const { return playerState_; }
    std::int64_t portAttempts() const { return portAttempts_; }

    // Called after each good state reply.
    std::function<void(const QuorvanePlayerState&)> onStateChanged;

private:
    void stateChangedNotice();
    std::optional<Bytes> readSecret() const;
    void requestOnce();
    void receive(PortReply reply);
    void sendCommand(MessageType type, std::int64_t value);
    void queryFinished(std::size_t slot, const QueryOutcome& outcome);
    void forgetQueryPorts();
    // Runs the action on a later turn of the main loop, if the client is still alive.
    void later(std::function<void()> action);

    const std::string portBaseName_;
    const std::function<std::optional<Bytes>()> secret_;
    const Services services_;
    const std::optional<MessagePortLocalResponder> localResponder_;
    const Logger log_;

    PlayerStateDecoder stateDecoder_;
    std::optional<QuorvanePlayerState> playerState_;
    Observable<bool> isConnected_{false};
    std::int64_t portAttempts_ = 0;

    std::unique_ptr<RemotePort> remotePort_;
    std::uint64_t connection_ = 0;  // +1 whenever the port changes
    bool isStopped_ = false;        // since the last start
    bool isRequesting_ = false;
    bool requestsAgain_ = false;  // requested during another request
    bool isPolling_ = false;
    Bytes replyMemory_;  // while polling; reallocating it costs more than reading a reply

    std::deque<QuerySlot> querySlots_;
    std::array<int, kQueryPortCount> querySlotLoad_{};
    std::optional<std::size_t> lastQuerySlot_;

    DarwinNotificationObserver stateChangedObserver_;
    LifeToken life_;
};

}  // namespace quorvane
