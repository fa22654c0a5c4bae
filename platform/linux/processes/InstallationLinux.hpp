// Tables that an installed application uses on this system.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

Installation makeInstallation(const ProcessInfo& process);

}  // namespace quorvane
