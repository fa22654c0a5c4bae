// The launch of the add-on up to the point where it runs. It needs no screen: a removal that is
// pending or asked for is carried out without one.
#pragma once

#include <functional>

#include "platform/LivePlatform.hpp"

namespace quorvane {

// Decides what this launch is for. Either removes the add-on and asks the application to terminate,
// or calls `run`. Main thread only.
void launchAddOn(const LiveServices& services, const std::function<void()>& run);

}  // namespace quorvane
