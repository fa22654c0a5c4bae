// Time from the system's monotonic clock, timers on the main queue.
#pragma once

#include "platform/Clock.hpp"

namespace quorvane {

// The clock keeps counting while the machine sleeps; a timer that is due meanwhile fires later, by
// the time slept.
Clock makeClockMacOS();

}  // namespace quorvane
