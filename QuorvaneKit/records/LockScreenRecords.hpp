// Records of the lock-screen handshake: the add-on's hello and the configuration that answers it.
// Field names are the keys on the wire.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorvane {

// The protocol version of this add-on, and the interval of its periodic hello.
inline constexpr std::int64_t kLockScreenHelloProtocolVersion = 1;
inline constexpr std::chrono::seconds kLockScreenHelloInterval{60};

struct LockScreenAddOnHello {
    std::int64_t protocolVersion = 0;
    std::string addOnVersion;  // major.minor.patch
    std::string macOSVersion;
    bool supportsThisMacOS = false;
    std::optional<std::string> installID;
    bool supersedesRemoval =
        false;  // installed after a removal was requested, which no longer applies
    bool operator==(const LockScreenAddOnHello&) const = default;
};

struct LockScreenAddOnConfiguration {
    bool isEnabled = false;
    bool removalRequested = false;
    std::string minimumAddOnVersion = "0";
    bool operator==(const LockScreenAddOnConfiguration&) const = default;
};

// The oldest add-on that the main application accepts.
inline constexpr std::string_view kMinimumAddOnVersion = "1.0.0";

// The main application's answer. A removal turns the card off, whatever the user's setting.
inline LockScreenAddOnConfiguration lockScreenConfiguration(bool isEnabled, bool removalRequested) {
    return {isEnabled && !removalRequested, removalRequested, std::string{kMinimumAddOnVersion}};
}

}  // namespace quorvane
