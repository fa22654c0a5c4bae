// The main application's decision on a hello while a removal of the add-on may be pending.
#pragma once

#include <optional>
#include <string>

#include "QuorvaneKit/records/LockScreenRecords.hpp"

namespace quorvane {

enum class LockScreenHelloOutcome {
    answer,            // the configuration as it is
    deliverRemoval,    // a configuration that requests removal
    supersedeRemoval,  // the pending removal is void: clear it, then the configuration as it is
};

// A removal of the add-on that has been asked for and not carried out yet.
struct LockScreenPendingRemoval {
    std::optional<std::string> targetInstallID;  // absent: meant for whichever add-on says hello
    bool operator==(const LockScreenPendingRemoval&) const = default;
};

LockScreenHelloOutcome decideLockScreenHello(
    const std::optional<LockScreenPendingRemoval>& pendingRemoval,
    const LockScreenAddOnHello& hello);

}  // namespace quorvane
