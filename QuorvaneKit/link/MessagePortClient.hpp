// The add-on's end of the link to the main application: it holds the last player state, knows
// whether the main application is there, sends commands, and runs queries over four ports of their
// own so that a slow one never delays the state.
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

// What became of a query.
struct QueryOutcome {
    enum class Kind { sent, notSent, expiredInQueue };
    Kind kind = Kind::notSent;
    std::int32_t status = 0;       // of `sent`: the port's send status
    std::optional<Bytes> reply{};  // of `sent`: absent when none came
    bool operator==(const QueryOutcome&) const = default;
};

// Answers queries inside the process; a client that has one never connects.
struct MessagePortLocalResponder {
    using Operation = std::function<void(Bytes request, std::function<void(Bytes)> completion)>;
    Operation history;
    Operation lastFmCall;
    Operation lastFmImage;
};

// Main thread only; the sends of queries alone run on their slots' queues. A waiting send may run
// the main loop, so every operation may be entered again from inside another, and the client may
// even be destroyed there.
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

    // `secret` reads the connection secret afresh; it is called on the main thread and on the
    // slots' queues.
    MessagePortClient(std::string_view portBaseName, std::function<std::optional<Bytes>()> secret,
                      Services services,
                      std::optional<MessagePortLocalResponder> localResponder = std::nullopt);
    ~MessagePortClient();
    MessagePortClient(const MessagePortClient&) = delete;  // its state refers to it
    MessagePortClient& operator=(const MessagePortClient&) = delete;

    // Connects and listens for "playerStateChanged". Calling it again while disconnected tries to
    // connect again.
    void start();
    // Disconnects and listens no more.
    void stop();
    void connect();
    void disconnect();
    // Blocks for at most the send and receive timeouts, one second each. Asked for from inside a
    // request's own wait, one more request follows on a later turn of the main loop.
    void requestStateUpdate();
    // While states are asked for again and again, the memory of a reply is kept for the next.
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

    // The completion runs once, on the main thread, never inside the call; not at all once the
    // client is gone.
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
    std::shared_ptr<State> state_;  // shared only to be held weakly by work in flight
};

}  // namespace quorvane
