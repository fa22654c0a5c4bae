// Serial queues of the system's dispatcher.
#pragma once

#include "platform/SerialQueue.hpp"

namespace quorvane {

// Destroying such a queue waits for the running action, unless that is who destroys it.
MakeSerialQueue makeSerialQueuesMacOS();

}  // namespace quorvane
