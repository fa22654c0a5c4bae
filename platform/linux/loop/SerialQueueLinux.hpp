// Serial queues with one thread each. A queue's first action starts its thread.
#pragma once

#include "platform/SerialQueue.hpp"

namespace quorvane {

MakeSerialQueue makeSerialQueuesLinux();

// Sets the name that debuggers and the process list show. The kernel keeps 15 characters, so a long
// name keeps its end, which is more specific.
void nameCurrentThread(const std::string& name);

}  // namespace quorvane
