// The system's lock-state sources other than notices.
#pragma once

#include "platform/LockSources.hpp"

namespace quorvane {

LockSources makeLockSourcesMacOS();

}  // namespace quorvane
