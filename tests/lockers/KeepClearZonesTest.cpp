#include "lockers/KeepClearZones.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

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

TEST(KeepClearZones, AreNoneWithoutALocker) {
    LockScene none = scene({});
    none.dialogs = {{10, 10, 50, 50}};
    EXPECT_EQ(keepClearZones(none), Zones{});
}

TEST(KeepClearZones, HoldThePromptsAreaInTheMiddleOfEachMonitor) {
    LockScene locked = scene({{kAll, kRing, {}}});
    EXPECT_EQ(keepClearZones(locked), (Zones{{865, 445, 190, 190}, {2465, 417, 190, 190}}));
    // It grows with the dots per inch, to whole pixels.
    locked.dotsPerInch = 192;
    EXPECT_EQ(keepClearZones(locked).front(), (Rect{770, 350, 380, 380}));
    locked.dotsPerInch = 100;
    EXPECT_EQ(keepClearZones(locked).front(), (Rect{861, 441, 198, 198}));
    locked.dotsPerInch = 0;  // a server that does not know its size
    EXPECT_EQ(keepClearZones(locked).front(), (Rect{865, 445, 190, 190}));
    // A locker that covers one monitor asks on that one.
    EXPECT_EQ(keepClearZones(scene({{kRight, kRing, {}}})), (Zones{{2465, 417, 190, 190}}));
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

// So that a card does not move each time a prompt opens and closes.
TEST(KeepClearZones, KeepThePlaceOfThePromptsSeen) {
    LockScene locked = scene({{kLeft, kRing, {{760, 480, 390, 100}, {10, 10, 100, 100}}}});
    locked.lastPrompt = promptsSeen(locked);
    EXPECT_EQ(locked.lastPrompt, (Size{400, 120})) << "about the middle, (960, 540)";
    locked.lockers.front().children = {{900, 440, 120, 120}, {100, 200, 1700, 850}};
    locked.lastPrompt = promptsSeen(locked);
    EXPECT_EQ(locked.lastPrompt, (Size{400, 200})) << "what leaves no room is not remembered";
    locked.lockers.front().children.clear();
    EXPECT_EQ(keepClearZones(locked), (Zones{{760, 440, 400, 200}}));
}

}  // namespace
}  // namespace quorvane
