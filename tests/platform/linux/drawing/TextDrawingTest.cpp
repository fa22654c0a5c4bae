#include <gtest/gtest.h>

#include "platform/linux/drawing/TextLayoutCache.hpp"
#include "tests/platform/linux/drawing/DrawnScene.hpp"

namespace quorvane {
namespace {

constexpr Size kArea{240, 60};
constexpr Rect kFrame{20, 16, 200, 28};
constexpr FontStyle kFont{.size = 17};
constexpr char kLong[] = "A line with many more words than any field of this width has room for";
constexpr char kArabic[] = "سطر أطول بكثير من الحقل الذي يفترض أن يظهر فيه هذا النص كله";

DrawnScene drawn(TextNode node, double scale = 1, bool isRightToLeft = false) {
    node.color = Color::white();
    Scene scene;
    scene.nodes = {node};
    scene.isRightToLeft = isRightToLeft;
    CairoCanvas canvas{scale};
    return {canvas, scene, kArea, scale};
}

DrawnScene drawn(const std::string& text, double scale = 1, bool isRightToLeft = false) {
    return drawn(TextNode{.frame = kFrame, .text = text, .font = kFont}, scale, isRightToLeft);
}

TEST(TextDrawing, CutsOffWhatIsTooLong) {
    for (const char* text : {kLong, kArabic})
        for (const bool isRightToLeft : {false, true})
            EXPECT_GT(drawn(text, 2, isRightToLeft).ink().width, kFrame.width - 25);
    // Cut off, not merely hidden: the last dots of the ellipsis are low and alone.
    const DrawnScene cut = drawn(kLong);
    const int right = static_cast<int>(cut.ink().maxX());
    for (int y = 16; y < 28; ++y) EXPECT_EQ(cut.alphaAt(right - 1, y), 0);
}

TEST(TextDrawing, PaintsNothingOutsideItsFrame) {
    constexpr Rect kLow{20, 24, 200, 10};  // lower than the letters
    std::string marks = "Za";
    for (int i = 0; i < 40; ++i) marks += "\u0300\u0323";
    for (const std::string& text :
         {marks, std::string{"\xff\xfe broken \xc3"}, std::string(100'000, 'W'),
          std::string(50'000, '\n') + "W", std::string{kArabic} + kLong}) {
        TextNode node{.frame = kLow, .text = text, .font = kFont};
        EXPECT_TRUE(kLow.covers(drawn(node, 2).ink()));
        node.scroll = TextNode::Scroll{-12, 40, 12};
        const Rect moving = drawn(node, 2).ink();
        EXPECT_TRUE(moving.isEmpty() || kLow.covers(moving));
    }
}

// Letters are not moved to the next whole pixel, because that would make their distances uneven.
TEST(TextDrawing, LettersStandWhereTheyWereLaidOut) {
    const double advance = makeMeasureText()("l", kFont);
    // The middle of the ink of a line of so many letters.
    const auto middle = [](std::size_t count) {
        const DrawnScene line = drawn(std::string(count, 'l'));
        double ink = 0, moment = 0;
        for (int y = 0; y < line.height(); ++y)
            for (int x = 0; x < line.width(); ++x) {
                ink += line.alphaAt(x, y);
                moment += x * line.alphaAt(x, y);
            }
        return moment / ink;
    };
    for (std::size_t count = 2; count <= 20; ++count)
        EXPECT_NEAR(middle(count) - middle(1), double(count - 1) * advance / 2, 0.15) << count;
}

TEST(TextDrawing, LaysOutOnlyWhatCouldBeRead) {
    TextLayoutCache layouts;
    const double bound = layouts.line(std::string(401, 'W'), kFont).width;
    EXPECT_EQ(layouts.line(std::string(100'000, 'W'), kFont).width, bound);
}

TEST(TextDrawing, TabularDigitsDoNotMove) {
    const MeasureText measure = makeMeasureText();
    const FontStyle tabular{.size = 13, .hasTabularDigits = true};
    EXPECT_DOUBLE_EQ(measure("1:11", tabular), measure("0:00", tabular));
    FontStyle bold = kFont;
    bold.weight = FontStyle::Weight::bold;
    EXPECT_GT(measure("Hamburg", bold), measure("Hamburg", kFont));
}

DrawnScene scrolled(double offset, double scale = 1, bool isRightToLeft = false, double fade = 12) {
    TextNode node{.frame = kFrame, .text = kLong, .font = kFont};
    node.scroll = TextNode::Scroll{offset, 40, fade};
    return drawn(node, scale, isRightToLeft);
}

TEST(TextDrawing, MovesByWholePixelsTowardTheLeadingEdge) {
    for (const bool isRightToLeft : {false, true}) {
        const DrawnScene before = scrolled(20, 2, isRightToLeft);
        const DrawnScene after = scrolled(23, 2, isRightToLeft);
        const int step = isRightToLeft ? 6 : -6;
        int ink = 0;
        for (int y = 0; y < before.height(); ++y)
            for (int x = 80; x < 400; ++x) {  // clear of both fades
                ASSERT_EQ(before.at(x, y), after.at(x + step, y)) << x << " " << y;
                ink += before.alphaAt(x, y) > 0 ? 1 : 0;
            }
        EXPECT_GT(ink, 500);
    }
    // Text at a fraction of a pixel is as sharp as at a whole one.
    EXPECT_EQ(scrolled(20.2), scrolled(20));
}

TEST(TextDrawing, FadesTowardBothEnds) {
    // The ink of one column, over many places of the text.
    const auto inkAt = [](double x, double fade) {
        double ink = 0;
        for (int offset = 100; offset < 160; ++offset) {
            const DrawnScene line = scrolled(offset, 1, false, fade);
            for (int y = 0; y < line.height(); ++y) ink += line.alphaAt(static_cast<int>(x), y);
        }
        return ink;
    };
    for (const auto& [distance, share] : {std::pair{3.5, 0.05}, {8.5, 0.63}, {20.5, 1.0}})
        for (const double x : {kFrame.x + distance, kFrame.maxX() - distance})
            EXPECT_NEAR(inkAt(x, 12) / inkAt(x, 0), share, 0.05) << x;
}

}  // namespace
}  // namespace quorvane
