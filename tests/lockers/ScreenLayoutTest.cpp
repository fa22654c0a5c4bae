// Screens during a lock, and the areas on them that no card may cover.
#include "lockers/ScreenLayout.hpp"

#include <gtest/gtest.h>

#include "lockers/KeepClearZones.hpp"

namespace quorvane {
namespace {

TEST(ScreenLayout, MeasuresInPoints) {
    // 1366 pixels are not a whole number of points at a scale of 1.5.
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
    const std::tuple<const char*, std::optional<double>, double> rows[] = {
        {"", std::nullopt, 1}, {"", 120, 1.25},   {"", 163, 1.75}, {"", 72, 1},
        {"", 100000, 8},       {"0.5", 192, 0.5}, {"0.4", 192, 2}, {"8", 192, 8},
        {"9", 192, 2},         {"2x", 96, 1},     {"nan", 192, 2}, {" 3 ", 192, 3}};
    for (const auto& [demand, dots, scale] : rows)
        EXPECT_EQ(scaleFor(demand, dots), scale) << demand << " at " << dots.value_or(-1);
}

TEST(ScreenLayout, FindsANumberAmongTheResources) {
    const char* const text =
        "*customization:\t-color\nXft.dpi.x:\t7\n! Xft.dpi: 8\nXft.dpi:\t144\nXft.rgba: none\n";
    EXPECT_EQ(numberResource(text, "Xft.dpi"), 144);
    EXPECT_EQ(numberResource(text, "Xft.rgba"), std::nullopt);
    EXPECT_EQ(numberResource("", "Xft.dpi"), std::nullopt);
    EXPECT_EQ(numberResource("Xft.dpi: 96.5", "Xft.dpi"), 96.5);
}

TEST(ScreenLayout, CountsMirroredOutputsOnce) {
    EXPECT_EQ(withoutRepeats({{0, 0, 800, 600}, {0, 0, 0, 0}, {0, 0, 800, 600}, {0, 0, 800, 480}}),
              (std::vector<Rect>{{0, 0, 800, 600}, {0, 0, 800, 480}}));
}

constexpr Rect kLeft{0, 0, 1920, 1080};
constexpr Rect kRight{1920, 0, 1280, 1024};
constexpr Rect kAll{0, 0, 3200, 1080};
constexpr Size kRing{190, 190};

using Zones = std::vector<Rect>;

LockScene scene(std::vector<LockScene::Locker> lockers) {
    return {.lockers = std::move(lockers),
            .dialogs = {},
            .monitors = {kLeft, kRight},
            .dotsPerInch = 96};
}

TEST(KeepClearZones, HoldThePromptsAreaInTheMiddleOfEachMonitor) {
    EXPECT_EQ(keepClearZones(scene({})), Zones{});
    LockScene locked = scene({{kAll, kRing, {}}});
    EXPECT_EQ(keepClearZones(locked), (Zones{{865, 445, 190, 190}, {2465, 417, 190, 190}}));
    // It grows with the dots per inch, to whole pixels.
    locked.dotsPerInch = 100;
    EXPECT_EQ(keepClearZones(locked).front(), (Rect{861, 441, 198, 198}));
    locked.dotsPerInch = 0;  // a server that does not know its size
    // Odd lengths: the middle is a whole pixel too.
    locked.monitors = {{0, 0, 1367, 769}};
    EXPECT_EQ(keepClearZones(locked), (Zones{{588, 289, 190, 190}}));
}

TEST(KeepClearZones, HoldThePromptsAndNotThePictures) {
    const Rect inTheRing{900, 500, 60, 50};
    const Rect message{2300, 40, 400, 150};
    const Rect dialog{600, 300, 793, 295};
    // Background pictures cover the whole, or one monitor each.
    LockScene locked = scene({{kLeft, kRing, {kAll, kLeft, inTheRing, message}}});
    locked.dialogs = {dialog, kLeft, {5, 5, 0, 20}, dialog};
    EXPECT_EQ(keepClearZones(locked), (Zones{{865, 445, 190, 190}, message, dialog}));
}

// A card must not move each time a prompt opens and closes.
TEST(KeepClearZones, KeepThePlaceOfThePromptsSeen) {
    LockScene locked = scene({{kLeft, kRing, {{760, 480, 390, 100}, {10, 10, 100, 100}}}});
    locked.lastPrompt = promptsSeen(locked);
    EXPECT_EQ(locked.lastPrompt, (Size{400, 120})) << "about the middle, (960, 540)";
    locked.lockers.front().children = {{900, 440, 120, 120}, {100, 200, 1700, 850}};
    locked.lastPrompt = promptsSeen(locked);
    EXPECT_EQ(locked.lastPrompt, (Size{400, 200})) << "too large a window is not remembered";
    locked.lockers.front().children.clear();
    EXPECT_EQ(keepClearZones(locked), (Zones{{760, 440, 400, 200}}));
}

}  // namespace
}  // namespace quorvane
