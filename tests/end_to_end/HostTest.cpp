// The main application comes, goes, hangs and lies while the add-on runs.

#include <gtest/gtest.h>

#include "tests/end_to_end/LockSession.hpp"

namespace quorvane {
namespace {

using namespace std::chrono_literals;

TEST(EndToEndHost, AHostStartedLaterIsFound) {
    LockSession session;
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("lockui: shown"));
    LoggedProcess host = session.startHost();
    EXPECT_TRUE(addOn.says("entrance: window")) << addOn.log();
}

TEST(EndToEndHost, AHostKilledWhileLockedTakesTheCardAwayAndItsSuccessorBringsItBack) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    host.process().end(SIGKILL);
    ASSERT_TRUE(addOn.says("exit: window"));
    ASSERT_TRUE(addOn.says(
        "state: Quorvane unreachable; cleared (Quorvane unreachable or quit), card hidden"));
    LoggedProcess successor = session.startHost();
    ASSERT_TRUE(addOn.says("card: fading in on 1 window(s)")) << addOn.log();
}

TEST(EndToEndHost, AHostThatQuitsInOrderHidesTheCardAtOnce) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    host.process().signal(SIGINT);
    ASSERT_TRUE(addOn.says("notice: mainAppWillTerminate; hiding the card"));
    EXPECT_TRUE(addOn.says("card: fading out on 1 window(s)"));
    const auto status = host.process().wait(20s);
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFEXITED(*status) && WEXITSTATUS(*status) == 0) << host.log();
}

TEST(EndToEndHost, DisablingTakesTheCardAwayAndEnablingBringsIt) {
    LockSession session;
    LoggedProcess host = session.startHost();
    LoggedProcess addOn = session.startAddOn();
    LoggedProcess locker = session.startLocker();
    ASSERT_TRUE(addOn.says("entrance: window")) << addOn.log();
    const auto command = [&](const char* name) {
        LoggedProcess run = session.start({HOST_PROGRAM, name});
        const auto status = run.process().wait(20s);
        return status && WIFEXITED(*status) ? WEXITSTATUS(*status) : -1;
    };
    EXPECT_EQ(command("status"), 0);
    EXPECT_EQ(command("disable"), 0);
    ASSERT_TRUE(addOn.says("windows: closing 1 (state)"));
    EXPECT_EQ(command("enable"), 0);
    EXPECT_TRUE(addOn.says("entrance: window"));
}

TEST(EndToEndHost, AHostThatHangsBlocksNobodyForLongAndShowsNoCard) {
    LockSession session;
    LoggedProcess host = session.startHost();
    host.process().signal(SIGSTOP);
    LoggedProcess addOn = session.startAddOn();  // connects, and waits in vain for a state
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
