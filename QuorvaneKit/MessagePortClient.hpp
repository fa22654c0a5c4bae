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

#include "QuorvaneKit/MessageType.hpp"
#include "QuorvaneKit/QuorvaneAction.hpp"
#include "QuorvaneKit/QuorvanePlayerState.hpp"
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
    std::int32_t status = 0;     // of `sent`: the port's send status
    std::optional<Bytes> reply;  // of `sent`: absent when none came
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
    MessagePortClient(std::string portBaseName, std::function<std::optional<Bytes>()> secret,
                      Services services,
                      std::optional<MessagePortLocalResponder> localResponder = std::nullopt);
    ~MessagePortClient();

    // Connects and listens for "playerStateChanged". Calling it again while disconnected tries to
    // connect again.
    void start();
    void stop();
    void connect();
    void disconnect();
    // Blocks for at most the send and receive timeouts, one second each.
    void requestStateUpdate();

    void perform(QuorvaneAction action);
    void setVolume(std::int64_t value);  // sent as 0...255
    void setRating(std::int64_t value);  // sent as 0...255

    // The completion runs once, on the main thread, never inside the call; not at all once the
    // client is gone.
    void sendQuery(MessageType type, Bytes payload, Duration timeout,
                   std::function<void(QueryOutcome)> completion);

    const Observable<bool>& isConnected() const;
    Observable<bool>& isConnected();
    // Why the last attempt to reach the main application failed; empty while connected.
    const std::string& unreachableReason() const;
    const std::optional<QuorvanePlayerState>& playerState() const;
    std::int64_t portAttempts() const;

    // Called after each good state reply.
    std::function<void(const QuorvanePlayerState&)> onStateChanged;

private:
    struct State;
    std::shared_ptr<State> state_;  // shared only to be held weakly by work in flight
};

}  // namespace quorvane
