// Serial queues of the system's dispatcher.
#pragma once

#include "platform/SerialQueue.hpp"

namespace quorvane {

// Destroying such a queue waits for the running action, unless that action destroys the queue.
MakeSerialQueue makeSerialQueuesMacOS();

}  // namespace quorvane
