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

DrawnScene drawn(const std::string& text, TextAlignment alignment = TextAlignment::leading,
                 double scale = 1, bool isRightToLeft = false) {
    return drawn(TextNode{.frame = kFrame, .text = text, .font = kFont, .alignment = alignment},
                 scale, isRightToLeft);
}

TEST(TextDrawing, MeasuresWhatItDrawsAtEveryScale) {
    const double width = makeMeasureText()("Hamburg", kFont);
    EXPECT_GT(width, 40);
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0}) {
        const Rect ink = drawn("Hamburg", TextAlignment::leading, scale).ink();
        EXPECT_NEAR(ink.width, width, 4) << scale;  // but for the letters' own margins
        EXPECT_NEAR(ink.x, kFrame.x, 3) << scale;
        EXPECT_NEAR(ink.midY(), kFrame.midY(), 4) << scale;
    }
    EXPECT_EQ(makeMeasureText()("", kFont), 0);
}

TEST(TextDrawing, AlignsByTheScenesDirection) {
    using enum TextAlignment;
    const struct {
        TextAlignment alignment;
        bool isRightToLeft;
        double share;  // of the free room that is left of the text
    } rows[] = {{leading, false, 0}, {center, false, 0.5}, {trailing, false, 1},
                {leading, true, 1},  {center, true, 0.5},  {trailing, true, 0}};
    for (const auto& row : rows) {
        const Rect ink = drawn("Hill", row.alignment, 2, row.isRightToLeft).ink();
        EXPECT_NEAR(ink.x - kFrame.x, row.share * (kFrame.width - ink.width), 3);
    }
}

TEST(TextDrawing, CutsOffWhatIsTooLong) {
    for (const char* text : {kLong, kArabic})
        for (const bool isRightToLeft : {false, true}) {
            const Rect ink = drawn(text, TextAlignment::leading, 2, isRightToLeft).ink();
            EXPECT_TRUE(contains(kFrame, ink));
            EXPECT_GT(ink.width, kFrame.width - 25);
        }
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
        EXPECT_TRUE(contains(kLow, drawn(node, 2).ink()));
        node.scroll = TextNode::Scroll{-12, 40, 12};
        const Rect moving = drawn(node, 2).ink();
        EXPECT_TRUE(moving.isEmpty() || contains(kLow, moving));
    }
}

// Not on the next whole pixel, which would make their distances uneven.
TEST(TextDrawing, LettersStandWhereTheyWereLaidOut) {
    const double advance = makeMeasureText()("l", kFont);
    double ink = 0, moment = 0, first = 0;
    for (int count = 1; count <= 20; ++count) {
        const DrawnScene line = drawn(std::string(static_cast<std::size_t>(count), 'l'));
        double allInk = 0, allMoment = 0;
        for (int y = 0; y < line.height(); ++y)
            for (int x = 0; x < line.width(); ++x) {
                allInk += line.alphaAt(x, y);
                allMoment += x * line.alphaAt(x, y);
            }
        const double last = (allMoment - moment) / (allInk - ink);
        if (count == 1) first = last;
        EXPECT_NEAR(last - first, (count - 1) * advance, 0.3) << count;
        ink = allInk;
        moment = allMoment;
    }
}

TEST(TextDrawing, LaysOutOnlyWhatCouldBeRead) {
    TextLayoutCache layouts;
    const double bound = layouts.line(std::string(401, 'W'), kFont).width;
    EXPECT_EQ(layouts.line(std::string(100'000, 'W'), kFont).width, bound);
}

TEST(TextDrawing, TabularDigitsDoNotMove) {
    const MeasureText measure = makeMeasureText();
    const FontStyle tabular{.size = 13, .hasTabularDigits = true};
    for (const char* text : {"1:11", "8:88", "4:07"})
        EXPECT_DOUBLE_EQ(measure(text, tabular), measure("0:00", tabular)) << text;
    // Nor do the dashes in their place join.
    const DrawnScene dashes =
        drawn(TextNode{.frame = kFrame, .text = "\u2013\u2013", .font = tabular}, 2);
    const Rect ink = dashes.ink();
    EXPECT_EQ(dashes.alphaAt(static_cast<int>(2 * ink.midX()), static_cast<int>(2 * ink.midY())),
              0);
    FontStyle bold = kFont;
    bold.weight = FontStyle::Weight::bold;
    EXPECT_GT(measure("Hamburg", bold), measure("Hamburg", kFont));
}

DrawnScene scrolled(double offset, double scale = 1, bool isRightToLeft = false, double fade = 12) {
    TextNode node{.frame = kFrame, .text = kLong, .font = kFont};
    node.scroll = TextNode::Scroll{offset, 40, fade};
    return drawn(node, scale, isRightToLeft);
}

TEST(TextDrawing, ScrollsRoundWithoutASeam) {
    const double width = makeMeasureText()(kLong, kFont);
    for (const bool isRightToLeft : {false, true})
        for (const double scale : {1.0, 2.0}) {
            // Whole pixels, so that both ways round alike.
            const double around = std::round((width + 40) * scale) / scale;
            const DrawnScene start = scrolled(-12, scale, isRightToLeft);
            const DrawnScene end = scrolled(around - 12, scale, isRightToLeft);
            int different = 0;
            for (int y = 0; y < start.height(); ++y)
                for (int x = 0; x < start.width(); ++x)
                    different += std::abs(start.alphaAt(x, y) - end.alphaAt(x, y)) > 8 ? 1 : 0;
            EXPECT_EQ(different, 0) << scale;
        }
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
    // Between two pixels a picture is as sharp as on one.
    EXPECT_EQ(scrolled(20.2), scrolled(20));
}

TEST(TextDrawing, FadesTowardBothEnds) {
    // How much of the text's strength is left at a distance from either end, over many places of
    // the text.
    const auto share = [](int x) {
        double faded = 0, whole = 0;
        for (int offset = 100; offset < 160; ++offset) {
            const DrawnScene with = scrolled(offset);
            const DrawnScene without = scrolled(offset, 1, false, 0);
            for (int y = 0; y < with.height(); ++y) {
                faded += with.alphaAt(x, y);
                whole += without.alphaAt(x, y);
            }
        }
        return faded / whole;
    };
    for (const auto& [distance, expected] : {std::pair{0.5, 0.005},
                                             {3.5, 0.05},
                                             {5.5, 0.20},
                                             {8.5, 0.63},
                                             {11.5, 0.98},
                                             {20.5, 1.0}}) {
        EXPECT_NEAR(share(static_cast<int>(kFrame.x + distance)), expected, 0.05) << distance;
        EXPECT_NEAR(share(static_cast<int>(kFrame.maxX() - distance)), expected, 0.05) << distance;
    }
}

}  // namespace
}  // namespace quorvane
