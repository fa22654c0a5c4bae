// What `quorvane-host status` tells.
#pragma once

#include <optional>
#include <string>

#include "QuorvaneKit/LockScreenAddOnSighting.hpp"
#include "QuorvaneKit/LockScreenHelloOutcome.hpp"
#include "QuorvaneKit/QuorvanePlayerState.hpp"
#include "host/AddOnPlace.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {

struct HostStatus {
    bool isServed = false;                     // a process holds the name of the main port
    std::optional<QuorvanePlayerState> state;  // what it answered
    bool hasSharedDefaults = false;
    bool isEnabled = false;
    std::optional<LockScreenPendingRemoval> pendingRemoval;
    bool lastLockHadNoRoom = false;
    std::optional<LockScreenAddOnSighting> lastSeen;
    AddOnPlace place{};
    std::optional<AddOnSignals::Status> addOn;  // what a running add-on answered

    // A few lines for a person.
    std::string text(WallTime now) const;
};

}  // namespace quorvane
