// The add-on's side of the hello: one question to the main application, and its answer or, whatever
// went wrong, a configuration that shows nothing and removes nothing.
#pragma once

#include <chrono>
#include <functional>

#include "QuorvaneKit/LockScreenRecords.hpp"
#include "QuorvaneKit/MessagePortClient.hpp"
#include "QuorvaneKit/MessageType.hpp"
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

// What the add-on goes by when no answer came; it says hello again on the next occasion.
inline LockScreenAddOnConfiguration failureConfiguration() { return {false, false, "0"}; }

// The completion runs when `sendQuery` runs its own; inside the call only for a hello that does not
// encode, which is logged and not sent.
void sendLockScreenHello(const LockScreenAddOnHello& hello, const SendQuery& sendQuery,
                         const Logger& log,
                         std::function<void(LockScreenAddOnConfiguration)> completion);

LockScreenAddOnConfiguration configurationFrom(QueryOutcome outcome);

}  // namespace quorvane
