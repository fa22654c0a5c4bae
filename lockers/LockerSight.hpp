// How a display sees lock screens.
#pragma once

#include <functional>

#include "platform/Handle.hpp"

namespace quorvane {

struct LockerSight {
    // Empty on Wayland, where no window shows it: an active screen-saver service then counts. The
    // login manager's hint may outlast the lock, so it does not count.
    std::function<bool()> isSeen;
    std::function<Handle(std::function<void()> changed)> observe;
};

}  // namespace quorvane
