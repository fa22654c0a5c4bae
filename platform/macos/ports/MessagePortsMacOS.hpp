// Named message ports of the system.
#pragma once

#include "platform/MessagePort.hpp"

namespace quorvane {

// The system keeps one object per name: a second remote port of a name in this process becomes
// invalid with the first.
ConnectPort makeConnectPortMacOS();
OpenPort makeOpenPortMacOS();

}  // namespace quorvane
