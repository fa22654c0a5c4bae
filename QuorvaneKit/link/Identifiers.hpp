// Names of the applications, their shared folder and their logs in the system.
#pragma once

#include <string_view>

namespace quorvane {

// Bundle, port, notice and log names begin with this prefix.
inline constexpr std::string_view kIdentifierPrefix = "example.quillon.Quorvane";
inline constexpr std::string_view kAddOnBundleIdentifier =
    "example.quillon.Quorvane.LockScreenAddOn";
// Names the shared container, the shared defaults' suite and the message ports.
inline constexpr std::string_view kAppGroup = "group.example.quillon.Quorvane";

// The log subsystem of the link; the add-on's own is its bundle identifier.
inline constexpr std::string_view kKitLogSubsystem = "QuorvaneKit";

}  // namespace quorvane
