#include "AddOnKit/card/PressHighlightStyle.hpp"

#include <gtest/gtest.h>

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
    t.moveTo(0, Transition::Curve::easeOut, 200ms, Instant{2s});  // the same goal: no restart
    EXPECT_FALSE(t.isMoving(Instant{2s}));

    t.moveTo(1, Transition::Curve::spring, 250ms, Instant{2s});
    EXPECT_GT(t.at(Instant{2260ms}), 0.9);
    EXPECT_TRUE(t.isMoving(Instant{2260ms})) << "until the spring has settled";
    for (Instant now{2s}; now < Instant{3s}; now += 5ms) EXPECT_LE(t.at(now), 1);
    EXPECT_FALSE(t.isMoving(Instant{3s}));
}

TEST(PressHighlightStyle, ShowsAPressByALightCircleAndASmallerSymbol) {
    const SymbolNode symbol{.name = "play.fill", .pointSize = 26, .color = Color::white()};
    const Rect frame{100, 50, 44, 44};
    Scene scene;
    PressHighlightStyle::draw(scene, frame, 0, symbol);
    ASSERT_EQ(scene.nodes.size(), 1u);
    EXPECT_EQ(std::get<SymbolNode>(scene.nodes[0]).frame, frame);

    PressHighlightStyle::draw(scene, frame, 1, symbol);
    ASSERT_EQ(scene.nodes.size(), 5u);
    EXPECT_EQ(scene.nodes[1], (SceneNode{ShapeNode{frame, 22, Color::white(0.16)}}));
    const auto& group = std::get<GroupBegin>(scene.nodes[2]);
    EXPECT_DOUBLE_EQ(group.transform.scale, 0.9);
    EXPECT_EQ(group.transform.centre, (Point{122, 72}));
    EXPECT_DOUBLE_EQ(group.opacity, 0.75);
    EXPECT_EQ(scene.nodes[3], scene.nodes[0]);
    EXPECT_TRUE(std::holds_alternative<GroupEnd>(scene.nodes[4]));

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
