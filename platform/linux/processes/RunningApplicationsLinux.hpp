// The applications of this login, found in the process table.
#pragma once

#include "platform/RunningApplications.hpp"

namespace quorvane {

// A process is an application when its executable lies in a bundle. It counts when it belongs to
// the same user and the same login: both on one display or, where one of the two has none, both
// with one runtime folder. Asking one to quit sends it SIGINT.
//
// A process begins as a copy of its parent and can be recognised only once it has become its own
// program. Its launch date is that of its first thread besides the main one, so that a copy which
// another one could not see yet is never older than that one. Without such a thread it is now.
RunningApplications makeRunningApplications();

}  // namespace quorvane
