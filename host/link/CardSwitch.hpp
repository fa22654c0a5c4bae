// Turns the card on the lock screen on and off, for `quorvane-host enable` and `disable`.
#pragma once

#include <expected>
#include <optional>
#include <string>

#include "platform/DarwinNotices.hpp"
#include "platform/MessagePort.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

struct CardSwitch {
    ConnectPort connectPort;
    DarwinNotices darwinNotices;
    std::optional<UserDefaults> sharedSuite;

    // Says what was done, or why nothing was. Main thread only.
    std::expected<std::string, std::string> set(bool isEnabled) const;
};

}  // namespace quorvane
