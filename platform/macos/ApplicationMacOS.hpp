// The application object: no Dock icon, no menu.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

// Its `run` does not return when it is ended in order: the system ends the process with status 0.
Application makeApplicationMacOS();

}  // namespace quorvane
