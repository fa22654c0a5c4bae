// Records of the lock-screen handshake: the add-on's hello and the configuration that answers it.
// Field names are the keys on the wire.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

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

}  // namespace quorvane
