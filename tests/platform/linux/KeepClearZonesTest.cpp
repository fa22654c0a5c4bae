#include "platform/linux/KeepClearZones.hpp"

#include <gtest/gtest.h>

namespace quorvane {
namespace {

constexpr Rect kLeft{0, 0, 1920, 1080};
constexpr Rect kRight{1920, 0, 1280, 1024};
constexpr Rect kAll{0, 0, 3200, 1080};

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

TEST(KeepClearZones, HoldTheIndicatorInTheMiddleOfEachMonitor) {
    LockScene locked = scene({{kAll, false, {}}});
    EXPECT_EQ(keepClearZones(locked), (Zones{{865, 445, 190, 190}, {2465, 417, 190, 190}}));
    // It grows with the dots per inch, to whole pixels.
    locked.dotsPerInch = 192;
    EXPECT_EQ(keepClearZones(locked).front(), (Rect{770, 350, 380, 380}));
    locked.dotsPerInch = 100;
    EXPECT_EQ(keepClearZones(locked).front(), (Rect{861, 441, 198, 198}));
    locked.dotsPerInch = 0;  // a server that does not know its size
    EXPECT_EQ(keepClearZones(locked).front(), (Rect{865, 445, 190, 190}));
    // A locker that covers one monitor draws on that one.
    EXPECT_EQ(keepClearZones(scene({{kRight, false, {}}})), (Zones{{2465, 417, 190, 190}}));
    // Odd lengths: the middle is a whole pixel too.
    locked.monitors = {{0, 0, 1367, 769}};
    EXPECT_EQ(keepClearZones(locked), (Zones{{588, 289, 190, 190}}));
}

TEST(KeepClearZones, HoldThePromptsAndNotThePictures) {
    const Rect prompt{700, 400, 400, 150};
    const Rect second{2300, 400, 400, 150};
    // Background pictures cover the whole, or one monitor each.
    EXPECT_EQ(keepClearZones(scene({{kAll, true, {kAll, kLeft, prompt, second}}})),
              (Zones{prompt, second}));
    EXPECT_EQ(keepClearZones(scene({{kAll, true, {}}})), Zones{});
    // Both for a locker that draws, or is not known, and has windows besides.
    EXPECT_EQ(keepClearZones(scene({{kLeft, false, {prompt}}})),
              (Zones{{865, 445, 190, 190}, prompt}));
}

TEST(KeepClearZones, HoldDialogsAboveTheLockerOnce) {
    const Rect dialog{600, 300, 793, 295};
    LockScene several = scene({{kRight, true, {}}, {kLeft, true, {dialog}}});
    several.dialogs = {dialog, kLeft, {5, 5, 0, 20}};
    EXPECT_EQ(keepClearZones(several), Zones{dialog});
}

}  // namespace
}  // namespace quorvane
