// The add-on's side of the hello: one query to the main application, and its outcome.
#pragma once

#include <chrono>
#include <functional>

#include "QuorvaneKit/link/MessagePortClient.hpp"
#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "QuorvaneKit/records/MessageType.hpp"
#include "platform/Bytes.hpp"
#include "platform/Clock.hpp"
#include "platform/Log.hpp"

namespace quorvane {

// Longer than the three seconds within which the main application answers or gives up, so that its
// empty reply is still received.
inline constexpr Duration kLockScreenHelloReceiveTimeout = std::chrono::seconds{5};

// The signature of MessagePortClient::sendQuery.
using SendQuery = std::function<void(MessageType type, Bytes payload, Duration timeout,
                                     std::function<void(QueryOutcome)> completion)>;

// The outcome of a hello. Without an answer, the configuration shows no card and removes nothing.
struct LockScreenHelloResult {
    enum class Outcome {
        notSent,     // as far as is known, the main application has not received it
        unanswered,  // received, but the answer is missing or undecodable
        answered
    };
    Outcome outcome = Outcome::notSent;
    LockScreenAddOnConfiguration configuration{false, false, "0"};
    bool operator==(const LockScreenHelloResult&) const = default;
};

// The completion runs when `sendQuery` runs its own. It runs inside the call only when the hello
// cannot be encoded; that is logged, and no hello is sent.
void sendLockScreenHello(const LockScreenAddOnHello& hello, const SendQuery& sendQuery,
                         const Logger& log, std::function<void(LockScreenHelloResult)> completion);

}  // namespace quorvane
