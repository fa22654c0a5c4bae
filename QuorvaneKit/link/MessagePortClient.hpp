// The add-on's end of the link to the main application. Holds the last player state, tracks whether
// the main application is there, and sends commands. Queries use four separate ports, so that a
// slow query never delays the state.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "QuorvaneKit/link/PortNames.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "QuorvaneKit/records/QuorvaneAction.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "platform/Clock.hpp"
#include "platform/DarwinNotices.hpp"
#include "platform/Log.hpp"
#include "platform/MainThread.hpp"
#include "platform/MessagePort.hpp"
#include "platform/Observable.hpp"
#include "platform/SerialQueue.hpp"

namespace quorvane {

// The outcome of a query.
struct QueryOutcome {
    enum class Kind { sent, notSent, expiredInQueue };
    Kind kind = Kind::notSent;
    std::int32_t status = 0;       // for `sent`: the port's send status
    std::optional<Bytes> reply{};  // for `sent`: nullopt when there was none
    bool operator==(const QueryOutcome&) const = default;
};

// Answers queries inside the process; a client that has a responder never connects.
struct MessagePortLocalResponder {
    using Operation = std::function<void(Bytes request, std::function<void(Bytes)> completion)>;
    Operation history;
    Operation lastFmCall;
    Operation lastFmImage;
};

// Main thread only, except that queries are sent on their slots' queues. A send that waits may run
// the main loop. So any operation may be re-entered from inside another, and the client may even be
// destroyed there.
class MessagePortClient {
public:
    using QueryOutcome = quorvane::QueryOutcome;

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
    ~MessagePortClient();
    MessagePortClient(const MessagePortClient&) = delete;  // because its state refers to it
    MessagePortClient& operator=(const MessagePortClient&) = delete;

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

    void perform(QuorvaneAction action);
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
    void setVolume(std::int64_t value);  // sent as 0...255
    void setRating(std::int64_t value);  // sent as 0...255

    // The completion runs once, on the main thread, never inside the call. It does not run after
    // the client is destroyed.
    void sendQuery(MessageType type, Bytes payload, Duration timeout,
                   std::function<void(QueryOutcome)> completion);

    const Observable<bool>& isConnected() const;
    Observable<bool>& isConnected();
    const std::optional<QuorvanePlayerState>& playerState() const;
    std::int64_t portAttempts() const;

    // Called after each good state reply.
    std::function<void(const QuorvanePlayerState&)> onStateChanged;

private:
    struct State;
    std::shared_ptr<State> state_;  // shared only so that pending work can hold it weakly
};

}  // namespace quorvane
