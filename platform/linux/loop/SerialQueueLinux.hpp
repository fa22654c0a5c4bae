// Serial queues as threads. A queue's thread begins with its first action.
#pragma once

#include "platform/SerialQueue.hpp"

namespace quorvane {

// Destroying such a queue waits for the running action, unless that is who destroys it.
MakeSerialQueue makeSerialQueuesLinux();

}  // namespace quorvane
