// The main application's record of the add-on's last hello, for its settings display.
#pragma once

#include <optional>
#include <string>

#include "QuorvaneKit/records/LockScreenRecords.hpp"
#include "platform/Clock.hpp"

namespace quorvane {

struct LockScreenAddOnSighting {
    std::string addOnVersion;
    std::string macOSVersion;
    bool supportsThisMacOS = false;
    WallTime date{};  // when the hello came; kept in whole seconds
    std::optional<std::string> installID;
    bool operator==(const LockScreenAddOnSighting&) const = default;
};

inline LockScreenAddOnSighting sightingOf(const LockScreenAddOnHello& hello, WallTime now) {
    return {hello.addOnVersion, hello.macOSVersion, hello.supportsThisMacOS, now, hello.installID};
}

}  // namespace quorvane
