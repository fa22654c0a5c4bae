#include "platform/linux/drawing/CairoCanvas.hpp"

#include <gtest/gtest.h>

#include "platform/linux/drawing/Symbols.hpp"
#include "tests/platform/linux/drawing/DrawnScene.hpp"

namespace quorvane {
namespace {

constexpr Size kArea{100, 60};
constexpr std::uint32_t kRed = 0xffff0000;
constexpr std::uint32_t kBlue = 0xff0000ff;

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
    EXPECT_EQ(square.at(10, 10), kRed);
    const DrawnScene round = drawn({ShapeNode{{10, 10, 40, 20}, 99, {1, 0, 0, 1}}});
    EXPECT_EQ(round.alphaAt(10, 10), 0);
    EXPECT_EQ(round.at(10 + 20, 10), kRed);
    EXPECT_EQ(round.alphaAt(11, 20), 255);
    const DrawnScene edge = drawn({ShapeNode{{10, 10, 40, 20}, 4, {1, 0, 0, 1}, 1}});
    EXPECT_EQ(edge.at(10, 20), kRed);
    EXPECT_EQ(edge.alphaAt(11, 20), 0);
}

TEST(CairoCanvas, GroupsMoveFadeAndClipAndMayNest) {
    const ShapeNode red{{0, 0, 100, 60}, 0, {1, 0, 0, 1}};
    const DrawnScene faded = drawn({GroupBegin{.opacity = 0.5}, red, red, GroupEnd{}});
    EXPECT_NEAR(faded.alphaAt(50, 30), 128, 1);  // together, not one over the other
    const DrawnScene clipped =
        drawn({GroupBegin{.clip = Rect{20, 20, 20, 20}, .clipCornerRadius = 10},
               GroupBegin{.transform = {.offset = {25, 0}}}, red, GroupEnd{}, GroupEnd{},
               ShapeNode{{90, 50, 10, 10}, 0, {0, 0, 1, 1}}});
    EXPECT_EQ(clipped.alphaAt(22, 30), 0);
    EXPECT_EQ(clipped.at(30, 30), kRed);
    EXPECT_EQ(clipped.alphaAt(38, 21), 0);
    EXPECT_EQ(clipped.at(95, 55), kBlue);
    const DrawnScene shrunk =
        drawn({GroupBegin{.transform = {.scale = 0.5, .centre = {50, 30}}}, red, GroupEnd{}});
    EXPECT_EQ(shrunk.ink(), (Rect{25, 15, 50, 30}));
    // A scene that opens more than it closes spoils nothing of the next.
    EXPECT_EQ(drawn({GroupBegin{.opacity = 0.5}, red}).alphaAt(50, 30), 128);
    EXPECT_EQ(drawn({GroupEnd{}, red}).at(50, 30), kRed);
}

TEST(CairoCanvas, DrawsOnlyWhatItsClipLetsThrough) {
    CairoCanvas canvas{1};
    const CairoSurface surface{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 100, 60)};
    const CairoContext cairo{cairo_create(surface.get())};
    cairo_rectangle(cairo.get(), 0, 0, 50, 60);
    cairo_clip(cairo.get());
    Scene scene;
    scene.nodes = {ShapeNode{{0, 0, 100, 60}, 0, {1, 0, 0, 1}}, GroupBegin{.opacity = 0.5}};
    canvas.drawOn(cairo.get(), scene);
    cairo_matrix_t matrix{};
    cairo_get_matrix(cairo.get(), &matrix);
    EXPECT_EQ(matrix.xx, 1);
    double left = 0, top = 0, right = 0, bottom = 0;
    cairo_clip_extents(cairo.get(), &left, &top, &right, &bottom);
    EXPECT_EQ(right, 50);
    cairo_surface_flush(surface.get());
    const auto* row =
        reinterpret_cast<const std::uint32_t*>(cairo_image_surface_get_data(surface.get()));
    EXPECT_EQ(row[49], kRed);
    EXPECT_EQ(row[50], 0u);
}

constexpr Rect kFrame{20, 8, 44, 44};

DrawnScene symbol(std::string_view name, double size, bool isRightToLeft = false) {
    return drawn({SymbolNode{kFrame, name, size, Color::white()}}, 4, isRightToLeft);
}

TEST(Symbols, StandInTheMiddleOfTheirFrames) {
    EXPECT_EQ(Symbols::names().size(), 9u);
    for (const std::string_view name : Symbols::names()) {
        const Rect ink = symbol(name, 20).ink();
        EXPECT_TRUE(contains(kFrame, ink)) << name << describe(ink);
        EXPECT_GE(std::max(ink.width, ink.height), 0.7 * 20) << name;
        EXPECT_LE(std::max(ink.width, ink.height), 1.4 * 20) << name;
        EXPECT_NEAR(ink.midX(), kFrame.midX(), 0.1 * 20) << name;
        EXPECT_NEAR(ink.midY(), kFrame.midY(), 0.1 * 20) << name;
    }
    EXPECT_TRUE(symbol("moon.fill", 20).ink().isEmpty());
    EXPECT_TRUE(contains(kFrame, symbol("forward.fill", 90).ink()));  // larger than its frame
}

TEST(Symbols, AreOneFamily) {
    EXPECT_EQ(symbol("heart", 20).ink(), symbol("heart.fill", 20).ink());
    EXPECT_EQ(symbol("forward.fill", 20).ink().width, symbol("backward.fill", 20).ink().width);
    EXPECT_EQ(symbol("forward.fill", 20).ink().height, symbol("backward.fill", 20).ink().height);
    // The middle of the empty heart is empty.
    const Point middle{kFrame.midX(), kFrame.midY()};
    EXPECT_EQ(symbol("heart", 20).at(middle), 0u);
    EXPECT_EQ(symbol("heart.fill", 20).at(middle), 0xffffffffu);
    // Where parts of a symbol overlap it is no stronger than elsewhere.
    const DrawnScene faint =
        drawn({SymbolNode{kFrame, "speaker.wave.3.fill", 30, Color::white(0.5)}}, 4);
    for (int y = 0; y < faint.height(); ++y)
        for (int x = 0; x < faint.width(); ++x) ASSERT_LE(faint.alphaAt(x, y), 128);
}

TEST(Symbols, OnlyTheSpeakersFaceTheTextsDirection) {
    for (const std::string_view name : Symbols::names()) {
        const DrawnScene left = symbol(name, 20);
        const DrawnScene right = symbol(name, 20, true);
        const bool turns = name.starts_with("speaker");
        EXPECT_EQ(left == right, !turns) << name;
        if (!turns) continue;
        const double middle = kFrame.midX();
        EXPECT_NEAR(left.ink().maxX() - middle, middle - right.ink().x, 0.3) << name;
    }
}

// What a canvas keeps of earlier scenes does not show.
TEST(CairoCanvas, DrawsEachSceneAsAFreshCanvasDoes) {
    const SymbolNode heart{{50, 40, 20, 20}, "heart", 17, Color::white(0.7)};
    SymbolNode smaller = heart, wider = heart, quieter = heart, between = heart, other = heart;
    smaller.pointSize = 12;
    wider.frame.width = 30;
    quieter.color.alpha = 0.3;
    between.frame.x += 0.25;
    other.name = "speaker.fill";
    const TextNode still{.frame = {50, 4, 46, 20}, .text = "Twice 🌧", .color = Color::white()};
    TextNode red = still, moving = still;
    red.color = {1, 0, 0, 1};
    moving.text = "Much too long for it";
    moving.scroll = TextNode::Scroll{7.3, 40, 12};
    const ImageNode image{
        {4, 4, 40, 40},
        6,
        std::make_shared<EncodedImage>(stripes(64, 64, {{1, 0, 0, 1}, {0, 0, 1, 1}}))};
    CairoCanvas canvas{2};
    for (const SceneNode& node :
         std::initializer_list<SceneNode>{heart, smaller, wider, quieter, between, other, heart,
                                          still, red, moving, still, image, image})
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
