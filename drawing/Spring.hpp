// A damped spring from 0 to 1, with perceptual duration and bounce as parameters.
#pragma once

#include "platform/Clock.hpp"

namespace quorvane {

struct Spring {
    double perceptualDuration = 0.5;  // seconds
    double bounce = 0;                // 0: none, 1: endless

    // The spring's position after `elapsed` seconds: 0 at 0, about 1 from settlingDuration on.
    double progress(double elapsed) const;
    // The time in seconds after which it stays within a thousandth of its end.
    double settlingDuration() const;

    bool operator==(const Spring&) const = default;
};

// The system's timing curves, t and result in 0...1. Slow start and slow end, for window fades:
double easeInOut(double t);
// Fast start and slow end:
double easeOut(double t);

}  // namespace quorvane
