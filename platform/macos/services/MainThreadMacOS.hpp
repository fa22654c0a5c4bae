// Posting to the main thread over the main queue.
#pragma once

#include "platform/MainThread.hpp"

namespace quorvane {

MainThread makeMainThreadMacOS();

}  // namespace quorvane
