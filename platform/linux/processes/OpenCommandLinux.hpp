// This system's launcher of applications, quorvane-open, as a command that is run.
#pragma once

#include "platform/OpenCommand.hpp"

namespace quorvane {

inline constexpr char kOpenCommand[] = "quorvane-open";

// Runs the one beside this program's executable, else the one in PATH. What it says on standard
// error, its complaints, is part of its output.
RunOpenCommand makeRunOpenCommand();

}  // namespace quorvane
