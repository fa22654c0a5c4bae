// Main loops of an application without Dock icon and menu, and of a command-line tool.
#pragma once

#include "platform/LivePlatform.hpp"

namespace quorvane {

// `run` does not return after an orderly end: the system ends the process with status 0.
Application makeApplicationMacOS();

// For programs without a bundle, which need an exit status: `run` returns.
Application makeToolMacOS();

}  // namespace quorvane
