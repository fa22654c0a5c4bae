// The main loop of an application without Dock icon and menu, and that of a command-line tool.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

// Its `run` does not return when it is ended in order: the system ends the process with status 0.
Application makeApplicationMacOS();

// For programs without a bundle, which have a status to end with: its `run` returns.
Application makeToolMacOS();

}  // namespace quorvane
