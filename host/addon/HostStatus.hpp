// The data and text of `quorvane-host status`.
#pragma once

#include <expected>
#include <optional>
#include <string>
#include <vector>

#include "QuorvaneKit/records/LockScreenAddOnSighting.hpp"
#include "QuorvaneKit/records/LockScreenHelloOutcome.hpp"
#include "QuorvaneKit/records/QuorvanePlayerState.hpp"
#include "host/addon/AddOnInstallation.hpp"
#include "shared/AddOnSignals.hpp"

namespace quorvane {

struct HostStatus {
    enum class Failure { notReachable, late, noAnswer };

    std::expected<QuorvanePlayerState, Failure> state = std::unexpected{Failure::notReachable};
    bool hasSharedDefaults = false;
    bool isEnabled = false;
    std::optional<LockScreenPendingRemoval> pendingRemoval{};
    bool lastLockHadNoRoom = false;
    std::optional<LockScreenAddOnSighting> lastSeen{};
    AddOnInstallation place{};
    bool isAddOnRunning = false;                  // a copy is in the process table
    std::optional<AddOnSignals::Status> addOn{};  // what it answered
    std::vector<std::string> silentPlayers{};     // their names
    std::vector<std::string> problems{};          // of the session

    // A few lines for the user.
    std::string text(WallTime now) const;
};

}  // namespace quorvane
