// Removing the add-on from a launch of its own. It needs no screen, and no coordinator is started.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

// Both remove what is there and then ask the application to terminate. Main thread only.
void finishRemoval(const LiveServices& services);
void uninstall(const LiveServices& services);

}  // namespace quorvane
