// Durations as log lines show them.
#pragma once

#include <string>

#include "platform/Clock.hpp"

namespace quorvane {

// "10.0 seconds", "0.25 seconds".
std::string durationText(Duration duration);

}  // namespace quorvane
