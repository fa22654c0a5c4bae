// Locks with real programs: the card, a click, the unlock; two screens; a host that hangs.
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

TEST_F(EndToEndLock, TheCardComesFollowsTheMusicObeysAClickAndGoesWithTheLock) {
    const PlayerGeometry geometry = PlayerGeometry::make(true, false);
    EXPECT_EQ(addOn.count("state: now 'Tideline'"), 1) << addOn.log();
    lock();
    for (const char* line :
         {"lock: com.apple.screenIsLocked", "lockui: shown", "windows true, card true"})
        EXPECT_EQ(addOn.count(line), 1) << addOn.log();
    EXPECT_TRUE(LockSession::isDrawnOn(probe, card.frame));
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(geometry.next))) << addOn.log();
    ASSERT_TRUE(addOn.says("command: nextTrack")) << addOn.log();
    ASSERT_TRUE(addOn.says("state: track changed")) << addOn.log();
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(geometry.playPause)));
    ASSERT_TRUE(addOn.says("command: playPause"));

    locker.process().end(SIGTERM);
    ASSERT_TRUE(addOn.says("windows: closing 1 (state)"));
    ASSERT_TRUE(addOn.says("unlock: com.apple.screenIsUnlocked"));
    EXPECT_FALSE(probe.isViewable(card.window));
}

TEST(EndToEndUnseen, ABlankedScreenGetsNoFrameAndOneWhenItIsLit) {
    LockSession session;
    const std::string script = (session.folder() / "script.json").string();
    std::ofstream{script} << R"({"repeat": "all", "tracks": [
        {"title": "One", "artist": "A", "duration": 1.5},
        {"title": "Two", "artist": "B", "duration": 1.5}]})";
    LoggedProcess host = session.startHost({"--script", script});
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    const Rect area = session.nextCard(addOn).frame;
    const X11Client probe = session.probe();
    ASSERT_TRUE(LockSession::isDrawnOn(probe, area));

    xcb_force_screen_saver(probe.connection(), XCB_SCREEN_SAVER_ACTIVE);
    probe.sync();
    const auto look = [&] { return screenshot(probe.connection(), area); };
    // The first change of track draws what was pending when the screen went dark.
    ASSERT_TRUE(addOn.says("state: track changed"));
    const Pixels dark = look();
    for (int track = 0; track < 2; ++track) ASSERT_TRUE(addOn.says("state: track changed"));
    EXPECT_EQ(look(), dark);
    xcb_force_screen_saver(probe.connection(), XCB_SCREEN_SAVER_RESET);
    EXPECT_TRUE(eventually([&] { return look() != dark; }));
}

TEST(EndToEndEnd, AVanishedXServerIsAPlainError) {
    LockSession session;
    LoggedProcess addOn = session.startAddOn();
    session.x().process().end(SIGKILL);
    EXPECT_EQ(addOn.process().exitStatus(20s), 1) << addOn.log();
}

TEST(EndToEndHost, ThatHangsBlocksNobodyForLongAndShowsNoCard) {
    LockSession session;
    LoggedProcess host = session.startHost();
    host.process().signal(SIGSTOP);
    LoggedProcess addOn = session.startAddOn();  // connects, but receives no state
    LoggedProcess locker = session.startLocker();
    const auto begun = std::chrono::steady_clock::now();
    ASSERT_TRUE(addOn.says("lockui: shown", 10s)) << addOn.log();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s);
    ASSERT_TRUE(addOn.says("delay true"));
    EXPECT_EQ(addOn.count("windows: building"), 0);
    host.process().signal(SIGCONT);
    EXPECT_TRUE(addOn.says("entrance: window", 90s)) << "the next hello, a minute later";
}

TEST(EndToEndScreens, EachHasACardAndOneThatGoesTakesOnlyItsOwn) {
    LockSession session;
    session.x().setMonitor("left", 960, 1080, 0, 0, true);
    session.x().setMonitor("right", 960, 1080, 960, 0);
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    const CardOnScreen left = session.nextCard(addOn);
    const CardOnScreen right = session.nextCard(addOn);
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    ASSERT_TRUE(addOn.says("entrance: window"));
    const X11Client probe = session.probe();
    EXPECT_LT(probe.frame(left.window).maxX(), 960);
    EXPECT_GT(probe.frame(right.window).x, 960);
    EXPECT_TRUE(LockSession::isDrawnOn(probe, left.frame));
    EXPECT_TRUE(LockSession::isDrawnOn(probe, right.frame));

    session.x().deleteMonitor("right");
    ASSERT_TRUE(addOn.says("screens changed: 1 screen(s), 2 window(s), windows wanted true"))
        << addOn.log();
    ASSERT_TRUE(addOn.says("windows: closing 2 (screens changed)"));
    ASSERT_TRUE(addOn.says("windows: building 1 (screens changed), card true"));
    const CardOnScreen only = session.nextCard(addOn);
    EXPECT_EQ(only.frame, left.frame);
    EXPECT_FALSE(probe.isViewable(right.window));
    EXPECT_EQ(addOn.count("entrance: window"), 2) << "the rebuilt card appears without an entrance";

    session.x().setMonitor("right", 960, 1080, 960, 0);
    ASSERT_TRUE(addOn.says("windows: building 2 (screens changed), card true")) << addOn.log();
}

}  // namespace
}  // namespace quorvane
