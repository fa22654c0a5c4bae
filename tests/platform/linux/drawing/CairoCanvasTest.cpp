#include "platform/linux/drawing/CairoCanvas.hpp"

#include <gtest/gtest.h>

#include "tests/platform/linux/drawing/DrawnScene.hpp"

namespace quorvane {
namespace {

constexpr Size kArea{100, 60};
constexpr std::uint32_t kRed = 0xffff0000;

DrawnScene drawn(std::vector<SceneNode> nodes, double scale = 1, bool isRightToLeft = false) {
    CairoCanvas canvas{scale};
    Scene scene;
    scene.nodes = std::move(nodes);
    scene.isRightToLeft = isRightToLeft;
    return {canvas, scene, kArea, scale};
}

TEST(CairoCanvas, FillsShapesAndRoundsTheirCorners) {
    const DrawnScene square = drawn({ShapeNode{{10, 10, 40, 20}, 0, {1, 0, 0, 1}}});
    EXPECT_EQ(square.ink(), (Rect{10, 10, 40, 20}));
    const DrawnScene round = drawn({ShapeNode{{10, 10, 40, 20}, 99, {1, 0, 0, 1}}});
    EXPECT_EQ(round.at(10, 10), 0u);
    EXPECT_EQ(round.at(10 + 20, 10), kRed);
    EXPECT_EQ(round.at(11, 20), kRed);
    const DrawnScene edge = drawn({ShapeNode{{10, 10, 40, 20}, 4, {1, 0, 0, 1}, 1}});
    EXPECT_EQ(edge.at(10, 20), kRed);
    EXPECT_EQ(edge.at(11, 20), 0u);
}

TEST(CairoCanvas, GroupsMoveFadeAndClipAndMayNest) {
    const ShapeNode red{{0, 0, 100, 60}, 0, {1, 0, 0, 1}};
    const DrawnScene faded = drawn({GroupBegin{.opacity = 0.5}, red, red, GroupEnd{}});
    EXPECT_NEAR(faded.alphaAt(50, 30), 128, 1);  // together, not one over the other
    const DrawnScene clipped =
        drawn({GroupBegin{.clip = Rect{20, 20, 20, 20}, .clipCornerRadius = 10},
               GroupBegin{.transform = {.offset = {25, 0}}}, red, GroupEnd{}, GroupEnd{},
               ShapeNode{{90, 50, 10, 10}, 0, {0, 0, 1, 1}}});
    EXPECT_EQ(clipped.at(22, 30), 0u);
    EXPECT_EQ(clipped.at(30, 30), kRed);
    EXPECT_EQ(clipped.at(38, 21), 0u);
    EXPECT_EQ(clipped.at(95, 55), 0xff0000ff);
    const DrawnScene shrunk =
        drawn({GroupBegin{.transform = {.scale = 0.5, .centre = {50, 30}}}, red, GroupEnd{}});
    EXPECT_EQ(shrunk.ink(), (Rect{25, 15, 50, 30}));
    // A scene may begin more groups than it ends, and the reverse.
    EXPECT_EQ(drawn({GroupEnd{}, GroupBegin{.opacity = 0.5}, red}).alphaAt(50, 30), 128);
}

constexpr Rect kFrame{20, 8, 44, 44};

DrawnScene symbol(std::string_view name, double size, bool isRightToLeft = false) {
    return drawn({SymbolNode{kFrame, name, size, Color::white()}}, 4, isRightToLeft);
}

TEST(Symbols, StandInTheMiddleOfTheirFramesAndOnlySpeakersFaceTheTextsDirection) {
    for (const std::string_view name :
         {"backward.fill", "forward.fill", "heart", "heart.fill", "music.note", "pause.fill",
          "play.fill", "speaker.fill", "speaker.wave.3.fill"}) {
        const DrawnScene left = symbol(name, 20), right = symbol(name, 20, true);
        const Rect ink = left.ink();
        EXPECT_NEAR(std::max(ink.width, ink.height), 21, 7) << name;
        EXPECT_NEAR(ink.midX(), kFrame.midX(), 2) << name;
        EXPECT_NEAR(ink.midY(), kFrame.midY(), 2) << name;
        if (name.starts_with("speaker"))
            EXPECT_NEAR(ink.maxX() - kFrame.midX(), kFrame.midX() - right.ink().x, 0.3) << name;
        else
            EXPECT_EQ(left, right) << name;
    }
    EXPECT_TRUE(symbol("moon.fill", 20).ink().isEmpty());
    EXPECT_TRUE(kFrame.covers(symbol("forward.fill", 90).ink()));  // larger than its frame
}

TEST(Symbols, AreOneFamily) {
    EXPECT_EQ(symbol("heart", 20).ink(), symbol("heart.fill", 20).ink());
    // The middle of the empty heart is empty.
    const Point middle{kFrame.midX(), kFrame.midY()};
    EXPECT_EQ(symbol("heart", 20).at(middle), 0u);
    EXPECT_EQ(symbol("heart.fill", 20).at(middle), 0xffffffffu);
    // A symbol has the same opacity where its parts overlap.
    const DrawnScene faint =
        drawn({SymbolNode{kFrame, "speaker.wave.3.fill", 30, Color::white(0.5)}}, 4);
    for (int y = 0; y < faint.height(); ++y)
        for (int x = 0; x < faint.width(); ++x) ASSERT_LE(faint.alphaAt(x, y), 128);
}

// Earlier scenes, which a canvas caches, do not affect the result.
TEST(CairoCanvas, DrawsEachSceneAsAFreshCanvasDoes) {
    const auto heart = [](std::string_view name, double x, double width, double size,
                          double alpha) {
        return SymbolNode{{x, 40, width, 20}, name, size, Color::white(alpha)};
    };
    const TextNode still{.frame = {50, 4, 46, 20}, .text = "Twice 🌧", .color = Color::white()};
    TextNode red = still, moving = still;
    red.color = {1, 0, 0, 1};
    moving.text = "Much too long for it";
    moving.scroll = TextNode::Scroll{7.3, 40, 12};
    CairoCanvas canvas{2};
    for (const SceneNode& node : std::initializer_list<SceneNode>{
             heart("heart", 50, 20, 17, 0.7), heart("heart", 50, 20, 12, 0.7),
             heart("heart", 50, 30, 17, 0.7), heart("heart", 50, 20, 17, 0.3),
             heart("heart", 50.25, 20, 17, 0.7), heart("speaker.fill", 50, 20, 17, 0.7), still, red,
             moving, still})
        for (const bool isRightToLeft : {false, true}) {
            Scene scene;
            scene.nodes = {ShapeNode{{0, 0, 100, 60}, 8, Color::white(0.2)}, node};
            scene.isRightToLeft = isRightToLeft;
            CairoCanvas fresh{2};
            EXPECT_EQ((DrawnScene{canvas, scene, kArea, 2}), (DrawnScene{fresh, scene, kArea, 2}));
        }
}

}  // namespace
}  // namespace quorvane
