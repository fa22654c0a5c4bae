#include "lockers/ScreenLayout.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

TEST(ScreenLayout, PutsTheOriginAtThePrimaryMonitorsBottomLeft) {
    // Primary on the right, a taller one on its left, one above.
    const ScreenLayout layout{
        {{1200, 400, 1920, 1080}, {0, 0, 1200, 1600}, {1200, -680, 1920, 1080}}, 1};
    const auto screens = layout.screens({});
    ASSERT_EQ(screens.size(), 3u);
    EXPECT_EQ(screens[0].frame, (Rect{0, 0, 1920, 1080}));
    EXPECT_EQ(screens[1].frame, (Rect{-1200, -120, 1200, 1600}));
    EXPECT_EQ(screens[2].frame, (Rect{0, 1080, 1920, 1080}));
    for (std::size_t i = 0; i < screens.size(); ++i)
        EXPECT_EQ(layout.pixels(screens[i].frame), layout.monitors[i]);
}

TEST(ScreenLayout, MeasuresInPoints) {
    // 1366 pixels are no whole number of points at one and a half.
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 2.75}) {
        const ScreenLayout layout{{{0, 0, 1366, 768}, {1366, 0, 2560, 1440}}, scale};
        const auto screens = layout.screens({});
        EXPECT_DOUBLE_EQ(screens[0].frame.width, 1366 / scale);
        EXPECT_EQ(screens[0].scale, scale);
        for (std::size_t i = 0; i < screens.size(); ++i)
            EXPECT_EQ(layout.pixels(screens[i].frame), layout.monitors[i]) << "at scale " << scale;
    }
}

TEST(ScreenLayout, GivesEachScreenItsPartOfTheZones) {
    const ScreenLayout layout{{{0, 0, 800, 600}, {800, 0, 800, 600}}, 2};
    const auto screens = layout.screens({{300, 200, 200, 100}, {700, 0, 300, 100}, {0, 700, 9, 9}});
    EXPECT_EQ(screens[0].keepClear, (std::vector<Rect>{{150, 150, 100, 50}, {350, 250, 50, 50}}));
    EXPECT_EQ(screens[1].keepClear, (std::vector<Rect>{{400, 250, 100, 50}}));
}

TEST(ScreenLayout, TakesItsScaleFromTheUserThenTheDesktop) {
    struct Case {
        std::string_view demand;
        std::optional<double> dots;
        double scale;
    };
    const Case cases[] = {
        {"", std::nullopt, 1}, {"", 96, 1},
        {"", 120, 1.25},       {"", 144, 1.5},
        {"", 163, 1.75},       {"", 192, 2},
        {"", 72, 1},           {"", 100000, 8},
        {"2", 96, 2},          {"1.5", std::nullopt, 1.5},
        {"0.5", 192, 0.5},     {"0.4", 192, 2},
        {"9", 192, 2},         {"two", 192, 2},
        {"2x", 192, 2},        {"nan", 192, 2},
        {" 3 ", 192, 3},
    };
    for (const Case& each : cases)
        EXPECT_EQ(scaleFor(each.demand, each.dots), each.scale)
            << each.demand << " at " << each.dots.value_or(-1);
}

TEST(ScreenLayout, FindsANumberAmongTheResources) {
    const char* const text =
        "*customization:\t-color\nXft.dpi.x:\t7\n! Xft.dpi: 8\nXft.dpi:\t144\nXft.rgba: none\n";
    EXPECT_EQ(numberResource(text, "Xft.dpi"), 144);
    EXPECT_EQ(numberResource(text, "Xft.rgba"), std::nullopt);
    EXPECT_EQ(numberResource(text, "Xft.antialias"), std::nullopt);
    EXPECT_EQ(numberResource("", "Xft.dpi"), std::nullopt);
    EXPECT_EQ(numberResource("Xft.dpi: 96.5", "Xft.dpi"), 96.5);
}

TEST(ScreenLayout, CountsMirroredOutputsOnce) {
    EXPECT_EQ(withoutRepeats({{0, 0, 800, 600}, {0, 0, 0, 0}, {0, 0, 800, 600}, {0, 0, 800, 480}}),
              (std::vector<Rect>{{0, 0, 800, 600}, {0, 0, 800, 480}}));
}

}  // namespace
}  // namespace quorvane
