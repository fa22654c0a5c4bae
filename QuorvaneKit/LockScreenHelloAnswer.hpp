// The main application's side of the hello as a pure function: from the request to the reply and to
// what must be remembered. Its caller logs and keeps the records.
#pragma once

#include <optional>

#include "QuorvaneKit/LockScreenHelloOutcome.hpp"
#include "QuorvaneKit/LockScreenRecords.hpp"
#include "platform/Bytes.hpp"

namespace quorvane {

struct LockScreenHelloAnswer {
    // Both absent when the request was no hello: then the reply keeps the card off, requests
    // nothing, and the caller logs kHelloUndecodable.
    std::optional<LockScreenAddOnHello> hello;
    std::optional<LockScreenHelloOutcome> outcome;  // at supersedeRemoval the caller clears it
    LockScreenAddOnConfiguration configuration;
    Bytes reply;  // the configuration's text
};

inline constexpr char kHelloUndecodable[] = "Lock-screen hello undecodable: answering locked";

LockScreenHelloAnswer answerLockScreenHello(
    Bytes request, bool isEnabled, const std::optional<LockScreenPendingRemoval>& pendingRemoval);

}  // namespace quorvane
