// Durations as a number of seconds, and back.
#pragma once

#include "platform/Clock.hpp"

namespace quorvane {

constexpr double secondsOf(Duration duration) {
    return std::chrono::duration<double>(duration).count();
}

// The duration must be within a Duration's range: 292 years.
constexpr Duration durationOf(double seconds) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds));
}

}  // namespace quorvane
