#include "drawing/Spring.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace quorvane {
namespace {

TEST(Spring, StartsAtRestOvershootsALittleAndSettles) {
    const Spring spring{.perceptualDuration = 0.5, .bounce = 0.05};
    EXPECT_EQ(spring.progress(0), 0);
    EXPECT_LT(spring.progress(0.01), 0.01);
    double highest = 0;
    for (double t = 0; t < 2; t += 0.001) highest = std::max(highest, spring.progress(t));
    EXPECT_GT(highest, 1.0);
    EXPECT_LT(highest, 1.001);
    for (double t = spring.settlingDuration(); t < 3; t += 0.001)
        EXPECT_NEAR(spring.progress(t), 1, 0.004);
    EXPECT_GT(spring.settlingDuration(), 0.5);
    EXPECT_LT(spring.settlingDuration(), 1);
}

TEST(Spring, ObeysItsEquationOfMotion) {
    // mass 1, stiffness (2 pi / d)^2, damping (1 - b) 4 pi / d; derivatives by central differences.
    for (const double bounce : {0.0, 0.05, 0.3}) {
        const Spring spring{.perceptualDuration = 0.5, .bounce = bounce};
        const double stiffness = std::pow(2 * M_PI / 0.5, 2);
        const double damping = (1 - bounce) * 4 * M_PI / 0.5;
        for (double t = 0.02; t < 0.8; t += 0.05) {
            const double h = 1e-4;
            const double before = spring.progress(t - h);
            const double at = spring.progress(t);
            const double after = spring.progress(t + h);
            const double acceleration = (after - 2 * at + before) / (h * h);
            const double velocity = (after - before) / (2 * h);
            EXPECT_NEAR(acceleration + damping * velocity + stiffness * (at - 1), 0, 0.01);
        }
    }
}

TEST(Easing, RunsFromZeroToOneAndNeverBack) {
    for (double (*curve)(double) : {easeInOut, easeOut}) {
        EXPECT_NEAR(curve(0), 0, 1e-6);
        EXPECT_NEAR(curve(1), 1, 1e-6);
        for (double t = 0; t < 1; t += 0.01) EXPECT_GE(curve(t + 0.01), curve(t));
    }
    // Points of the Bezier curves with the control points (0.42, 0), (0.58, 1) and (0, 0), (0.58,
    // 1).
    EXPECT_NEAR(easeInOut(0.274375), 0.15625, 1e-6);
    EXPECT_NEAR(easeOut(0.3425), 0.5, 1e-6);
}

}  // namespace
}  // namespace quorvane
