// Named message ports of the system.
#pragma once

#include "platform/MessagePort.hpp"

namespace quorvane {

// The system keeps one object a name: a second remote port of the same name in this process ends
// with the first.
ConnectPort makeConnectPortMacOS();
OpenPort makeOpenPortMacOS();

}  // namespace quorvane
