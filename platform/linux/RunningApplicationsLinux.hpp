// The applications of this login, found in the process table.
#pragma once

#include "platform/RunningApplications.hpp"

namespace quorvane {

// A process is an application when its executable lies in a bundle. It counts when it belongs to
// the same user and the same login: both on one display or, where one of the two has none, both
// with one runtime folder. Asking one to quit sends it SIGINT.
RunningApplications makeRunningApplications();

}  // namespace quorvane
