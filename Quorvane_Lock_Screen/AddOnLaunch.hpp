// Launch of the add-on up to the point where it runs. It needs no screen, so a pending or requested
// removal is carried out without one.
#pragma once

#include <functional>

#include "platform/LivePlatform.hpp"

namespace quorvane {

// Decides the purpose of this launch. Either removes the add-on and asks the application to
// terminate, or calls `run`. Main thread only.
void launchAddOn(const LiveServices& services, const std::function<void()>& run);

}  // namespace quorvane
