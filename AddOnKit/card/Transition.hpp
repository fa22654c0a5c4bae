// Animated number that moves from one value to another.
#pragma once

#include "platform/Clock.hpp"

namespace quorvane {

// Plain value; at rest it does not change. Reversing midway continues from the current value.
class Transition {
public:
    enum class Curve { easeOut, easeInOut, spring };

    Transition() = default;
    explicit Transition(double value) : from_(value), to_(value) {}

    // For a spring, `duration` is its perceptual duration. The spring does not bounce.
    void moveTo(double value, Curve curve, Duration duration, Instant now);
    double at(Instant now) const;
    double target() const { return to_; }
    bool isMoving(Instant now) const { return now < end_; }

private:
    double from_ = 0;
    double to_ = 0;
    Curve curve_ = Curve::easeOut;
    Duration duration_{};
    Instant start_{};
    Instant end_{};
};

}  // namespace quorvane
