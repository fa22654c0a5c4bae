// Facts about this process.
#pragma once

#include "platform/ProcessInfo.hpp"

namespace quorvane {

ProcessInfo makeProcessInfo(int argumentCount, char** arguments);

}  // namespace quorvane
