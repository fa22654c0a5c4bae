// What the system tells about the lock besides its notices.
#pragma once

#include "platform/LockSources.hpp"

namespace quorvane {

LockSources makeLockSourcesMacOS();

}  // namespace quorvane
