#include "AddOnKit/card/Transition.hpp"

#include "drawing/Spring.hpp"

namespace quorvane {
namespace {

double seconds(Duration duration) { return std::chrono::duration<double>(duration).count(); }

}  // namespace

void Transition::moveTo(double value, Curve curve, Duration duration, Instant now) {
    if (value == to_) return;
    from_ = at(now);
    to_ = value;
    curve_ = curve;
    duration_ = duration;
    start_ = now;
    end_ = now + duration;
    if (curve == Curve::spring)
        end_ = now + std::chrono::duration_cast<Duration>(std::chrono::duration<double>(
                         Spring{seconds(duration), 0}.settlingDuration()));
}

double Transition::at(Instant now) const {
    if (now >= end_) return to_;
    if (now <= start_) return from_;
    const double elapsed = seconds(now - start_);
    double progress = 0;
    switch (curve_) {
        case Curve::easeOut: progress = easeOut(elapsed / seconds(duration_)); break;
        case Curve::easeInOut: progress = easeInOut(elapsed / seconds(duration_)); break;
        case Curve::spring: progress = Spring{seconds(duration_), 0}.progress(elapsed); break;
    }
    return from_ + (to_ - from_) * progress;
}

}  // namespace quorvane
