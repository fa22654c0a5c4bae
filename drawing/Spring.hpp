// A damped spring from 0 to 1, described the way designers do.
#pragma once

#include "platform/Clock.hpp"

namespace quorvane {

struct Spring {
    double perceptualDuration = 0.5;  // seconds
    double bounce = 0;                // 0: none, 1: without end

    // How far the spring has come after `elapsed` seconds: 0 at 0, about 1 from settlingDuration
    // on.
    double progress(double elapsed) const;
    // When it stays within a thousandth of its end, in seconds.
    double settlingDuration() const;

    bool operator==(const Spring&) const = default;
};

// The system's timing curves, t and result in 0...1. Slow start and slow end, as of window fades:
double easeInOut(double t);
// Fast start and slow end:
double easeOut(double t);

}  // namespace quorvane
