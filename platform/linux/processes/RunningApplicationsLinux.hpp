// Applications of this login, found in the process table.
#pragma once

#include "platform/RunningApplications.hpp"

namespace quorvane {

// A process is an application when its executable lies in a bundle. It counts when it belongs to
// the same user and the same login: same display or, if either process has no display, same runtime
// folder. Requests to quit send SIGINT.
//
// A process begins as a copy of its parent and is recognisable only after it has become its own
// program. Its launch date is the start of its first thread other than the main one, so that a copy
// is never older than another copy that could not yet see it. Without such a thread, the
// launch date is the current time.
RunningApplications makeRunningApplications();

}  // namespace quorvane
