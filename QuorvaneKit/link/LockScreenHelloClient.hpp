// The add-on's side of the hello: one question to the main application, and what became of it.
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

// Longer than the three seconds in which the main application answers or gives up, so that its
// empty reply arrives as such.
inline constexpr Duration kLockScreenHelloReceiveTimeout = std::chrono::seconds{5};

// As MessagePortClient::sendQuery.
using SendQuery = std::function<void(MessageType type, Bytes payload, Duration timeout,
                                     std::function<void(QueryOutcome)> completion)>;

// What became of a hello. Without an answer the configuration shows nothing and removes nothing.
struct LockScreenHelloResult {
    enum class Outcome {
        notSent,     // the main application has not received it, as far as can be known
        unanswered,  // received, but not answered, or with something undecodable
        answered
    };
    Outcome outcome = Outcome::notSent;
    LockScreenAddOnConfiguration configuration{false, false, "0"};
    bool operator==(const LockScreenHelloResult&) const = default;
};

// The completion runs when `sendQuery` runs its own; inside the call only for a hello that does not
// encode, which is logged and not sent.
void sendLockScreenHello(const LockScreenAddOnHello& hello, const SendQuery& sendQuery,
                         const Logger& log, std::function<void(LockScreenHelloResult)> completion);

}  // namespace quorvane
