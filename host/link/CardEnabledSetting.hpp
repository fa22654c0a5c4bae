// Switch for the card on the lock screen, used by `quorvane-host enable` and `disable`.
#pragma once

#include <expected>
#include <optional>
#include <string>

#include "platform/DarwinNotices.hpp"
#include "platform/MessagePort.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

struct CardEnabledSetting {
    ConnectPort connectPort;
    DarwinNotices darwinNotices;
    std::optional<UserDefaults> sharedSuite;

    // Returns a text of what was done, or the reason of a failure. Main thread only.
    std::expected<std::string, std::string> set(bool isEnabled) const;
};

}  // namespace quorvane
