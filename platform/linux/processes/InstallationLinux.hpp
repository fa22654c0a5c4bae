// The tables of an installed application's life on this system.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

Installation makeInstallation(const ProcessInfo& process);

}  // namespace quorvane
