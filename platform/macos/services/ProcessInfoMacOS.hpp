// Facts about this process, and operations on it.
#pragma once

#include "platform/ProcessInfo.hpp"

namespace quorvane {

ProcessInfo makeProcessInfoMacOS(int argumentCount, char** arguments);
BeginActivity makeBeginActivityMacOS();
// Names the calling thread. The system takes 63 bytes.
void nameCurrentThreadMacOS(const std::string& name);

}  // namespace quorvane
