// The main queue as the way back to the main thread.
#pragma once

#include "platform/MainThread.hpp"

namespace quorvane {

MainThread makeMainThreadMacOS();

}  // namespace quorvane
