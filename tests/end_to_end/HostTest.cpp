// A host that is killed or hangs while the add-on runs.
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

TEST_F(EndToEndLock, AHostKilledWhileLockedTakesTheCardAwayAndItsSuccessorBringsItBack) {
    lock();
    host.process().end(SIGKILL);
    ASSERT_TRUE(addOn.says("exit: window"));
    ASSERT_TRUE(addOn.says(
        "state: Quorvane unreachable; cleared (Quorvane unreachable or quit), card hidden"));
    LoggedProcess successor = session.startHost();
    ASSERT_TRUE(addOn.says("card: fading in on 1 window(s)")) << addOn.log();
    session.start({HOST_PROGRAM, "disable"}).process().wait(20s);
    EXPECT_TRUE(addOn.says("windows: closing 1 (state)"));
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

}  // namespace
}  // namespace quorvane
