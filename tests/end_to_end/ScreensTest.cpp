// Two screens, then one.

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

const Rect kLeft{0, 0, 960, 1080};
const Rect kRight{960, 0, 960, 1080};

bool contains(const Rect& outer, const Rect& inner) {
    return inner.x >= outer.x && inner.y >= outer.y && inner.maxX() <= outer.maxX() &&
           inner.maxY() <= outer.maxY();
}

TEST(EndToEndScreens, EachHasACardAndOneThatGoesTakesOnlyItsOwn) {
    LockSession session;
    session.x().setMonitor("left", 960, 1080, 0, 0, true);
    session.x().setMonitor("right", 960, 1080, 960, 0);
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    const CardOnScreen left = LockSession::nextCard(addOn);
    const CardOnScreen right = LockSession::nextCard(addOn);
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    ASSERT_TRUE(addOn.says("entrance: window"));
    const X11Client probe = session.probe();
    EXPECT_TRUE(contains(kLeft, probe.frame(left.window)));
    EXPECT_TRUE(contains(kRight, probe.frame(right.window)));
    EXPECT_TRUE(LockSession::isDrawnOn(probe, left.frame));
    EXPECT_TRUE(LockSession::isDrawnOn(probe, right.frame));

    session.x().deleteMonitor("right");
    ASSERT_TRUE(addOn.says("screens changed: 1 screen(s), 2 window(s), windows wanted true"))
        << addOn.log();
    ASSERT_TRUE(addOn.says("windows: closing 2 (screens changed)"));
    ASSERT_TRUE(addOn.says("windows: building 1 (screens changed), card true"));
    const CardOnScreen only = LockSession::nextCard(addOn);
    EXPECT_EQ(only.frame, left.frame);
    EXPECT_TRUE(eventually([&] { return probe.isViewable(only.window); }));
    EXPECT_TRUE(LockSession::isDrawnOn(probe, only.frame));
    EXPECT_FALSE(probe.isViewable(left.window));
    EXPECT_FALSE(probe.isViewable(right.window));
    EXPECT_EQ(addOn.count("entrance: window"), 2) << "the rebuilt card appears without an entrance";

    session.x().setMonitor("right", 960, 1080, 960, 0);
    ASSERT_TRUE(addOn.says("windows: building 2 (screens changed), card true")) << addOn.log();
}

}  // namespace
}  // namespace quorvane
