#include <gtest/gtest.h>

#include "AddOnKit/card/Transition.hpp"
#include "AddOnKit/card/VolumeSlider.hpp"
#include "drawing/Spring.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

TEST(Transition, ReversesFromItsCurrentValue) {
    Transition t;
    EXPECT_FALSE(t.isMoving(Instant{}));
    t.moveTo(1, Transition::Curve::easeOut, 100ms, Instant{1s});
    EXPECT_EQ(t.at(Instant{1s}), 0);
    const double half = t.at(Instant{1050ms});
    EXPECT_NEAR(half, easeOut(0.5), 1e-9);
    t.moveTo(0, Transition::Curve::easeOut, 200ms, Instant{1050ms});
    EXPECT_NEAR(t.at(Instant{1150ms}), half * (1 - easeOut(0.5)), 1e-9);
    EXPECT_TRUE(t.isMoving(Instant{1249ms}));
    EXPECT_EQ(t.at(Instant{1250ms}), 0);
    t.moveTo(0, Transition::Curve::easeOut, 200ms, Instant{2s});  // the same target: no restart
    EXPECT_FALSE(t.isMoving(Instant{2s}));

    t.moveTo(1, Transition::Curve::spring, 250ms, Instant{2s});
    EXPECT_GT(t.at(Instant{2260ms}), 0.9);
    EXPECT_TRUE(t.isMoving(Instant{2260ms})) << "until the spring has settled";
    for (Instant now{2s}; now < Instant{3s}; now += 5ms) EXPECT_LE(t.at(now), 1);
    EXPECT_FALSE(t.isMoving(Instant{3s}));
}

TEST(VolumeSlider, TurnsATouchIntoAVolume) {
    const struct {
        double x, width;
        bool isRightToLeft;
        std::int64_t volume;
    } rows[] = {{150, 300, false, 50}, {2.9, 300, false, 0},   {299.9, 300, false, 99},
                {-40, 300, false, 0},  {999, 300, false, 100}, {0, 300, true, 100},
                {999, 300, true, 0},   {75, 300, true, 75},    {0.5, 1, false, 50},
                {0.25, 0, false, 25},  {7, 0, false, 100}};
    for (const auto& row : rows)
        EXPECT_EQ(VolumeSlider::value(row.x, row.width, row.isRightToLeft), row.volume)
            << row.x << " of " << row.width;
}

}  // namespace
}  // namespace quorvane
