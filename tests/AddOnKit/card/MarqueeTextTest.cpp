#include "AddOnKit/card/MarqueeText.hpp"

#include <gtest/gtest.h>

#include <cmath>

namespace quorvane {
namespace {

using namespace std::chrono_literals;

constexpr Rect kField{98, 20, 200, 28};

MarqueeText tooLong() {
    return {.text = "too long", .textWidth = 300, .fieldWidth = kField.width, .start = Instant{}};
}

Instant at(double seconds) {
    return Instant{std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds))};
}

TEST(MarqueeText, RestsThenMovesOverItselfAndTheGap) {
    const struct {
        double time, offset;
    } rows[] = {{2.5, 0},          {3.5, 32}, {6.874, 139.968}, {6.875, 0},
                {6.875 + 3.5, 32}, {-5, 0},   {INFINITY, 0},    {NAN, 0}};
    for (const auto& row : rows)
        EXPECT_NEAR(MarqueeText::offset(row.time, 100), row.offset, 1e-9) << row.time;
    // A width that leaves no cycle.
    EXPECT_EQ(MarqueeText::offset(10, -200), 0);
}

TEST(MarqueeText, StandsStillWhenItFitsOrMotionIsReduced) {
    const struct {
        double width;
        bool reduceMotion;
        std::optional<bool> override;
        bool scrolls;
    } rows[] = {{300, false, {}, true},
                {kField.width, false, {}, false},
                {300, true, {}, false},
                {300, true, false, true},
                {300, false, true, false}};
    for (const auto& row : rows) {
        MarqueeText text = tooLong();
        text.textWidth = row.width;
        text.reduceMotion = row.reduceMotion;
        text.reduceMotionOverride = row.override;
        const TextNode node = text.node(kField, at(4));
        EXPECT_EQ(node.scroll.has_value(), row.scrolls) << &row - rows;
        EXPECT_EQ(node.frame == kField, !row.scrolls);
        EXPECT_EQ(text.nextChange(at(4), 1).has_value(), row.scrolls);
    }
}

TEST(MarqueeText, RestsAtItsOwnStartInEitherLayout) {
    using enum TextAlignment;
    const struct {
        const char* text;
        double width;
        bool isRightToLeft;  // of the card
        TextAlignment alignment;
    } rows[] = {{"A Slow Parade", 300, false, leading}, {"A Slow Parade", 300, true, trailing},
                {"نسيم البحر", 300, false, trailing},   {"نسيم البحر", 300, true, leading},
                {"«7» – שלום", 300, false, trailing},   {"\u202a٣ 1999!", 300, false, leading},
                {"٣ 1999! 🌧", 300, true, leading},  {"نسيم البحر", 200, false, leading},
                {"A Slow Parade", 200, true, leading},  {"夜の港", 300, true, trailing},
                {"\u200f1999", 300, false, trailing},   {"\xff\xd9", 300, true, leading}};
    for (const auto& row : rows) {
        MarqueeText text = tooLong();
        text.text = row.text;
        text.textWidth = row.width;
        text.isRightToLeft = row.isRightToLeft;
        EXPECT_EQ(text.node(kField, at(4)).alignment, row.alignment) << row.text;
    }
}

// The distance of the text's leading edge from the field's, in points.
double moved(const TextNode& node) { return node.frame.x + -node.scroll->offset - kField.x; }

TEST(MarqueeText, FadesInBeforeItsFieldAndOutInsideItAlsoAtAFrozenMoment) {
    MarqueeText text = tooLong();
    const TextNode resting = text.node(kField, at(1));
    EXPECT_DOUBLE_EQ(moved(resting), 0);
    EXPECT_EQ(resting.frame, (Rect{86, 20, 212, 28}));
    EXPECT_EQ(resting.scroll->fade, 12);
    EXPECT_EQ(resting.scroll->gap, 40);
    text.isRightToLeft = true;
    EXPECT_EQ(text.node(kField, at(1)).frame, (Rect{98, 20, 212, 28}));

    text = tooLong();
    text.frozenTime = 4;
    EXPECT_DOUBLE_EQ(moved(text.node(kField, at(100))), -48);
    EXPECT_FALSE(text.nextChange(at(100), 1));
    text.frozenTime.reset();
    text.start.reset();
    EXPECT_DOUBLE_EQ(moved(text.node(kField, at(100))), 0);
}

TEST(MarqueeText, SleepsWhileItRestsAndThenWakesForWholePixels) {
    const MarqueeText text = tooLong();
    EXPECT_EQ(text.nextChange(at(0.5), 1), 2s + 31'250us);  // the rest, then one pixel
    for (const double scale : {1.0, 1.25, 2.0, 3.0})
        for (const Duration late : {0us, 100us}) {
            double step = 0;
            double before = 0;
            Instant now = at(2.5);
            for (int frame = 0; frame < 200; ++frame) {
                now += *text.nextChange(now, scale) + late;
                const double pixels = -moved(text.node(kField, now)) * scale;
                EXPECT_NEAR(pixels, std::round(pixels), 0.02);
                if (frame == 0) step = pixels;
                EXPECT_NEAR(pixels - before, step, 0.05) << frame << " at " << scale;
                before = pixels;
            }
            EXPECT_LE(200 / std::chrono::duration<double>(now - at(2.5)).count(), 66);
        }
}

}  // namespace
}  // namespace quorvane
