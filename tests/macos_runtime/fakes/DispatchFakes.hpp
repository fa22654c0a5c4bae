// What tests may do to dispatch: nothing runs, and no time passes, until a test says so.
#pragma once

#include <chrono>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

// Runs what was added to the main queue, and what that adds, until nothing is left. Whether there
// was anything.
bool drainMainQueue();
// The same for every other queue, each action as on its own queue.
void drainQueues();
// Moves the time that timers go by, firing what falls due on the way.
void passTime(std::chrono::nanoseconds time);
// What the handlers of this signal's sources would do when it comes in.
void raiseSignal(int signal);
// Sources that are neither cancelled nor gone.
std::size_t activeSources();

}  // namespace macrt
