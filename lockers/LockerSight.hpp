// How lock screens are seen: on this process's display, or by another process.
#pragma once

#include <functional>
#include <optional>

#include "platform/Handle.hpp"

namespace quorvane {

struct LockerSight {
    // Empty on Wayland, where no window shows it: an active screen-saver service then counts. The
    // login manager's hint may outlast the lock, so it does not count. Nullopt while the process
    // that sees them is gone.
    std::function<std::optional<bool>()> isSeen;
    std::function<Handle(std::function<void()> changed)> observe;
};

}  // namespace quorvane
