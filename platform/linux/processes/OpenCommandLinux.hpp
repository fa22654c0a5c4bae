// Runner of quorvane-open, this system's launcher of applications.
#pragma once

#include "platform/OpenCommand.hpp"

namespace quorvane {

inline constexpr char kOpenCommand[] = "quorvane-open";

// Runs the quorvane-open beside this program's executable, else the one in PATH. The output
// includes its standard error, which holds its error messages.
RunOpenCommand makeRunOpenCommand();

}  // namespace quorvane
