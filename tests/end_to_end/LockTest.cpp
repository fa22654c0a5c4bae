// One lock with real programs: the card, a click, the unlock.
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
    EXPECT_EQ(probe.frame(card.window), card.frame);

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

TEST_F(EndToEndLock, AnUnlockBeforeTheRevealDelayShowsNoCard) {
    locker = session.startLocker();
    ASSERT_TRUE(addOn.says("lockui: shown"));
    locker.process().end(SIGKILL);
    ASSERT_TRUE(addOn.says("unlock: com.apple.screenIsUnlocked"));
    // The next lock shows the card once, so the first has left no timer.
    locker = session.startLocker();
    ASSERT_TRUE(addOn.says("windows: building 1"));
    EXPECT_EQ(addOn.count("windows: building"), 1);
    EXPECT_EQ(addOn.count("delay true"), 1) << addOn.log();
}

TEST(EndToEndEnd, AVanishedXServerIsAPlainErrorAndSIGTERMOneLine) {
    LockSession session;
    LoggedProcess addOn = session.startAddOn();
    session.x().process().end(SIGKILL);
    EXPECT_EQ(addOn.process().exitStatus(20s), 1) << addOn.log();

    LockSession other;
    LoggedProcess second = other.startAddOn();
    second.process().signal(SIGTERM);
    EXPECT_TRUE(second.says("received SIGTERM; quitting"));
    const auto end = second.process().wait(20s);
    ASSERT_TRUE(end);
    EXPECT_TRUE(WIFSIGNALED(*end) && WTERMSIG(*end) == SIGTERM);
}

}  // namespace
}  // namespace quorvane
