// The program's main job on real parts: the lock, the card over it, a click, the unlock.

#include <gtest/gtest.h>

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

const PlayerGeometry kGeometry = PlayerGeometry::make(true, false);

TEST(EndToEndLock, TheCardComesFollowsTheMusicObeysAClickAndGoesWithTheLock) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    EXPECT_EQ(addOn.count("state: now 'Tideline'"), 1) << addOn.log();
    ScreenProbe probe = session.probe();

    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("lock: com.apple.screenIsLocked")) << addOn.log();
    ASSERT_TRUE(addOn.says("lockui: shown"));
    ASSERT_TRUE(addOn.says("windows true, card true"));
    const CardOnScreen card = LockSession::nextCard(addOn);
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    EXPECT_TRUE(LockSession::eventually([&] { return probe.isViewable(card.window); })) << addOn.log();
    EXPECT_EQ(probe.frame(card.window), card.frame);

    // The lock screen is of one colour; artwork, glass and shadow are not.
    EXPECT_TRUE(LockSession::isDrawnOn(probe, card.frame));
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.next))) << addOn.log();
    ASSERT_TRUE(addOn.says("command: nextTrack")) << addOn.log();
    ASSERT_TRUE(addOn.says("state: track changed")) << addOn.log();
    ASSERT_TRUE(LockSession::click(probe, addOn, card.middleOf(kGeometry.playPause)));
    ASSERT_TRUE(addOn.says("command: playPause"));

    locker.process().end(SIGTERM);
    ASSERT_TRUE(addOn.says("windows: closing 1 (state)"));
    ASSERT_TRUE(addOn.says("unlock: com.apple.screenIsUnlocked"));
    EXPECT_FALSE(probe.isViewable(card.window));
}

TEST(EndToEndLock, AnUnlockBeforeTheRevealDelayShowsNoCard) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("lockui: shown"));
    locker.process().end(SIGKILL);
    ASSERT_TRUE(addOn.says("unlock: com.apple.screenIsUnlocked"));
    // A whole further lock passes: the first one has left no timer behind.
    LoggedProcess second = session.startLocker();
    ASSERT_TRUE(addOn.says("windows: building 1"));
    EXPECT_EQ(addOn.count("windows: building"), 1);
    EXPECT_EQ(addOn.count("delay true"), 1) << addOn.log();
}

TEST(EndToEndLock, AKilledLockerTakesTheCardWithItAndTheNextLockWorks) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    for (int lock = 0; lock < 3; ++lock) {
        LoggedProcess locker = session.startLocker();
        const CardOnScreen card = LockSession::nextCard(addOn);
        ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
        locker.process().end(SIGKILL);
        ASSERT_TRUE(addOn.says("windows: closing 1 (state)"));
        EXPECT_FALSE(session.probe().isViewable(card.window));
    }
}

TEST(EndToEndLock, AnAddOnStartedWhileLockedShowsTheCard) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess locker = session.startLocker();
    LoggedProcess addOn = session.startAddOn();
    EXPECT_TRUE(addOn.says("entrance: window")) << addOn.log();
}

TEST(EndToEndLock, AVanishedXServerIsAPlainErrorAndSIGTERMOneLine) {
    LockSession session;
    LoggedProcess addOn = session.startAddOn();
    session.x().process().end(SIGKILL);
    const auto status = addOn.process().wait(20s);
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 1) << addOn.log();

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
