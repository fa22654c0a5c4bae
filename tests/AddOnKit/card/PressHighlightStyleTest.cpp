#include "AddOnKit/card/PressHighlightStyle.hpp"

#include <gtest/gtest.h>

#include "drawing/Spring.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

TEST(Transition, TurnsRoundWhereItIs) {
    Transition t;
    EXPECT_FALSE(t.isMoving(Instant{}));
    t.moveTo(1, Transition::Curve::easeOut, 100ms, Instant{1s});
    EXPECT_EQ(t.at(Instant{1s}), 0);
    EXPECT_NEAR(t.at(Instant{1050ms}), easeOut(0.5), 1e-9);
    const double half = t.at(Instant{1050ms});
    t.moveTo(0, Transition::Curve::easeOut, 200ms, Instant{1050ms});
    EXPECT_EQ(t.at(Instant{1050ms}), half);
    EXPECT_NEAR(t.at(Instant{1150ms}), half * (1 - easeOut(0.5)), 1e-9);
    EXPECT_TRUE(t.isMoving(Instant{1249ms}));
    EXPECT_FALSE(t.isMoving(Instant{1250ms}));
    EXPECT_EQ(t.at(Instant{1250ms}), 0);
    // The same goal again does not start anew.
    t.moveTo(0, Transition::Curve::easeOut, 200ms, Instant{2s});
    EXPECT_FALSE(t.isMoving(Instant{2s}));
}

TEST(Transition, AllowsASpringItsTimeToSettle) {
    Transition t;
    t.moveTo(1, Transition::Curve::spring, 250ms, Instant{});
    EXPECT_TRUE(t.isMoving(Instant{260ms}));
    EXPECT_GT(t.at(Instant{260ms}), 0.9);
    double highest = 0;
    for (Instant now{}; now < Instant{1s}; now += 5ms) highest = std::max(highest, t.at(now));
    EXPECT_EQ(highest, 1);
    EXPECT_FALSE(t.isMoving(Instant{1s}));
}

TEST(PressHighlightStyle, ShowsAPressByALightCircleAndASmallerSymbol) {
    const PressHighlightStyle style{.width = 44, .height = 44};
    const SymbolNode symbol{.name = "play.fill", .pointSize = 26, .color = Color::white()};
    const Rect place{100, 50, 44, 44};
    Scene resting;
    style.draw(resting, place, 0, symbol);
    ASSERT_EQ(resting.nodes.size(), 1u);
    EXPECT_EQ(std::get<SymbolNode>(resting.nodes[0]).frame, place);

    Scene pressed;
    style.draw(pressed, place, 1, symbol);
    ASSERT_EQ(pressed.nodes.size(), 4u);
    const auto& light = std::get<ShapeNode>(pressed.nodes[0]);
    EXPECT_EQ(light.frame, place);
    EXPECT_EQ(light.cornerRadius, 22);
    EXPECT_DOUBLE_EQ(light.fill.alpha, 0.16);
    const auto& group = std::get<GroupBegin>(pressed.nodes[1]);
    EXPECT_DOUBLE_EQ(group.transform.scale, 0.9);
    EXPECT_EQ(group.transform.apply({122, 72}), (Point{122, 72}));
    EXPECT_DOUBLE_EQ(group.opacity, 0.75);
    EXPECT_TRUE(std::holds_alternative<GroupEnd>(pressed.nodes[3]));

    Scene oblong;
    PressHighlightStyle{.width = 60, .height = 40, .circle = false}.draw(oblong, place, 1, symbol);
    EXPECT_EQ(std::get<ShapeNode>(oblong.nodes[0]).frame, (Rect{92, 52, 60, 40}));
    EXPECT_LT(std::get<ShapeNode>(oblong.nodes[0]).cornerRadius, 20);
}

TEST(PressHighlightStyle, GoesDownFastAndComesBackSlowly) {
    Transition amount;
    PressHighlightStyle::turn(amount, true, Instant{});
    EXPECT_TRUE(amount.isMoving(Instant{79ms}));
    EXPECT_FALSE(amount.isMoving(Instant{80ms}));
    PressHighlightStyle::turn(amount, false, Instant{1s});
    EXPECT_TRUE(amount.isMoving(Instant{1219ms}));
    EXPECT_FALSE(amount.isMoving(Instant{1220ms}));
}

}  // namespace
}  // namespace quorvane
