// A host that is killed, disabled or hangs while the add-on runs.
#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;
using EndToEndHost = EndToEndLock;

TEST_F(EndToEndHost, KilledWhileLockedTakesTheCardAwayAndItsSuccessorBringsItBack) {
    lock();
    host.process().end(SIGKILL);
    ASSERT_TRUE(addOn.says("exit: window"));
    ASSERT_TRUE(addOn.says(
        "state: Quorvane unreachable; cleared (Quorvane unreachable or quit), card hidden"));
    LoggedProcess successor = session.startHost();
    ASSERT_TRUE(addOn.says("card: fading in on 1 window(s)")) << addOn.log();
}

TEST_F(EndToEndHost, DisablingTakesTheCardAwayAndEnablingBringsIt) {
    lock();
    const auto command = [&](const char* name) {
        return session.start({HOST_PROGRAM, name}).process().exitStatus(20s);
    };
    EXPECT_EQ(command("status"), 0);
    EXPECT_EQ(command("disable"), 0);
    ASSERT_TRUE(addOn.says("windows: closing 1 (state)"));
    EXPECT_EQ(command("enable"), 0);
    EXPECT_TRUE(addOn.says("entrance: window"));
}

TEST(EndToEndHangingHost, BlocksNobodyForLongAndShowsNoCard) {
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
    EXPECT_TRUE(addOn.says("entrance: window", 90s))
        << addOn.log();  // the next hello, a minute later
}

}  // namespace
}  // namespace quorvane
