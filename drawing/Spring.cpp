#include "drawing/Spring.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace quorvane {
namespace {

// x'' + 2 * damping * x' + frequency^2 * x = 0 for the remaining distance x, from x = 1 at rest.
struct Oscillator {
    double frequency;
    double damping;

    explicit Oscillator(const Spring& spring)
        : frequency(2 * std::numbers::pi / spring.perceptualDuration),
          damping((1 - std::clamp(spring.bounce, 0.0, 1.0)) * frequency) {}

    double distance(double t) const {
        if (damping >= frequency) return (1 + frequency * t) * std::exp(-frequency * t);
        const double swing = std::sqrt(frequency * frequency - damping * damping);
        return std::exp(-damping * t) *
               (std::cos(swing * t) + damping / swing * std::sin(swing * t));
    }
};

// The cubic Bezier curve with the control points (startX, 0) and (0.58, 1), solved for its
// parameter by bisection.
double ease(double t, double startX) {
    const double x = std::clamp(t, 0.0, 1.0);
    double low = 0;
    double high = 1;
    for (int i = 0; i < 30; ++i) {
        const double s = (low + high) / 2;
        const double at =
            3 * (1 - s) * (1 - s) * s * startX + 3 * (1 - s) * s * s * 0.58 + s * s * s;
        (at < x ? low : high) = s;
    }
    const double s = (low + high) / 2;
    return s * s * (3 - 2 * s);
}

}  // namespace

double Spring::progress(double elapsed) const {
    return elapsed <= 0 ? 0 : 1 - Oscillator{*this}.distance(elapsed);
}

double Spring::settlingDuration() const {
    // The envelope falls as exp(-damping t). The limit of ten swings also ends a spring without
    // damping.
    const double damping = Oscillator{*this}.damping;
    const double limit = 10 * perceptualDuration;
    return damping <= 0 ? limit : std::min(limit, std::log(1000.0) / damping);
}

double easeInOut(double t) { return ease(t, 0.42); }
double easeOut(double t) { return ease(t, 0); }

}  // namespace quorvane
