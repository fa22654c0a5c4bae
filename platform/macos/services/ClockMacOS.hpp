// Clock on the system's monotonic clock, with timers on the main queue.
#pragma once

#include "platform/Clock.hpp"

namespace quorvane {

// The clock keeps counting while the machine sleeps. A timer that falls due during sleep fires
// later, by the time slept.
Clock makeClockMacOS();

}  // namespace quorvane
