#include "AddOnKit/card/Transition.hpp"

#include "drawing/Spring.hpp"
#include "platform/Seconds.hpp"

namespace quorvane {

void Transition::moveTo(double value, Curve curve, Duration duration, Instant now) {
    if (value == to_) return;
    from_ = at(now);
    to_ = value;
    curve_ = curve;
    duration_ = duration;
    start_ = now;
    end_ = now + duration;
    if (curve == Curve::spring)
        end_ = now + durationOf(Spring{secondsOf(duration), 0}.settlingDuration());
}

double Transition::at(Instant now) const {
    if (now >= end_) return to_;
    if (now <= start_) return from_;
    const double elapsed = secondsOf(now - start_);
    double progress = 0;
    switch (curve_) {
        case Curve::easeOut: progress = easeOut(elapsed / secondsOf(duration_)); break;
        case Curve::easeInOut: progress = easeInOut(elapsed / secondsOf(duration_)); break;
        case Curve::spring: progress = Spring{secondsOf(duration_), 0}.progress(elapsed); break;
    }
    return from_ + (to_ - from_) * progress;
}

}  // namespace quorvane
