// Status of the add-on in the main application's settings, derived from its last hello.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "QuorvaneKit/records/LockScreenAddOnSighting.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

struct LockScreenAddOnConnected {
    std::string version;
    bool operator==(const LockScreenAddOnConnected&) const = default;
};
struct LockScreenAddOnNotConnected {
    std::string version;
    WallTime lastSeen{};
    bool operator==(const LockScreenAddOnNotConnected&) const = default;
};
// The add-on cannot draw on this macOS, or is older than the main application accepts.
struct LockScreenAddOnWaitingForUpdate {
    std::string macOSVersion;
    bool operator==(const LockScreenAddOnWaitingForUpdate&) const = default;
};
struct LockScreenAddOnNotInstalled {
    bool operator==(const LockScreenAddOnNotInstalled&) const = default;
};

using LockScreenAddOnStatus =
    std::variant<LockScreenAddOnConnected, LockScreenAddOnNotConnected,
                 LockScreenAddOnWaitingForUpdate, LockScreenAddOnNotInstalled>;

// Allows for one missed hello and half an interval of delay.
inline constexpr std::chrono::seconds kLockScreenSightingLifetime =
    kLockScreenHelloInterval * 5 / 2;

// An add-on that was never seen counts as not installed. One that needs an update is shown as such
// whether it is running or not, because connecting would not help it.
LockScreenAddOnStatus lockScreenAddOnStatus(const std::optional<LockScreenAddOnSighting>& sighting,
                                            WallTime now);

// Compares dotted decimal numbers one by one; a missing or invalid number counts as 0.
bool isOlderVersion(std::string_view version, std::string_view other);

}  // namespace quorvane
