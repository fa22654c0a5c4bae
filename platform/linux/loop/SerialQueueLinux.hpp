// Serial queues with one thread each. A queue's first action starts its thread.
#pragma once

#include "platform/SerialQueue.hpp"

namespace quorvane {

// Destroying such a queue waits for the running action, unless that action destroys the queue.
MakeSerialQueue makeSerialQueuesLinux();

}  // namespace quorvane
