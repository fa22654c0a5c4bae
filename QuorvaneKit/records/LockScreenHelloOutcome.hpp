// The main application's decision on a hello while a removal of the add-on may be pending.
#pragma once

#include <optional>
#include <string>

#include "QuorvaneKit/records/LockScreenRecords.hpp"

namespace quorvane {

enum class LockScreenHelloOutcome {
    answer,            // the configuration unchanged
    deliverRemoval,    // a configuration that requests removal
    supersedeRemoval,  // clears the pending removal, then answers with the configuration unchanged
};

// A removal of the add-on that was requested and is not yet carried out.
struct LockScreenPendingRemoval {
    std::optional<std::string> targetInstallID;  // nullopt: applies to any add-on that says hello
    bool operator==(const LockScreenPendingRemoval&) const = default;
};

inline LockScreenHelloOutcome decideLockScreenHello(
    const std::optional<LockScreenPendingRemoval>& pendingRemoval,
    const LockScreenAddOnHello& hello) {
    if (!pendingRemoval) return LockScreenHelloOutcome::answer;
    if (hello.supersedesRemoval) return LockScreenHelloOutcome::supersedeRemoval;
    const auto& target = pendingRemoval->targetInstallID;
    // If either side does not know the target, the removal is delivered.
    if (!target || !hello.installID || *target == *hello.installID)
        return LockScreenHelloOutcome::deliverRemoval;
    return LockScreenHelloOutcome::supersedeRemoval;
}

}  // namespace quorvane
