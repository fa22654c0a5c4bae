#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"

namespace quorvane {

LockScreenHelloOutcome decideLockScreenHello(
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
