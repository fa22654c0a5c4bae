// Facts about this process, and operations on it.
#pragma once

#include "platform/ProcessInfo.hpp"

namespace quorvane {

ProcessInfo makeProcessInfoMacOS(int argumentCount, char** arguments);
BeginActivity makeBeginActivityMacOS();
// Sets the calling thread's name. The system keeps 63 bytes.
void nameCurrentThreadMacOS(const std::string& name);

}  // namespace quorvane
