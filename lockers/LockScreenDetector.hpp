// A detector of lock screens: this process's display, or another process.
#pragma once

#include <functional>
#include <optional>

#include "platform/Handle.hpp"

namespace quorvane {

struct LockScreenDetector {
    // Empty on Wayland, where no window shows a lock: an active screen-saver service then counts.
    // The login manager's hint may outlast the lock, so it does not count. Returns nullopt while
    // the process that detects lock screens is gone.
    std::function<std::optional<bool>()> isDetected;
    std::function<Handle(std::function<void()> changed)> observe;
};

}  // namespace quorvane
