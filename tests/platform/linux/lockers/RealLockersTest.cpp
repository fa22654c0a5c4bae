// The lockers of the distribution, as real processes on a private X server.
#include <unistd.h>

#include <algorithm>

#include "tests/platform/linux/lockers/LockFixture.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

class RealLockers : public LockFixture {
protected:
    ChildProcess start(std::vector<std::string> arguments) {
        std::vector<std::string> environment{server.environment(), "HOME=" + home.path().string(),
                                             "XSECURELOCK_SAVER=saver_blank"};
        // What they say of a machine without accounts and logins is of no interest.
        arguments.insert(arguments.begin(), {"sh", "-c", "exec \"$@\" >/dev/null 2>&1", "sh"});
        return ChildProcess{arguments, environment};
    }

    TemporaryFolder home;
};

TEST_F(RealLockers, XsecurelocksPromptIsKeptClear) {
    client->setResources("Xft.dpi: 96\n");
    client->sync();
    watch();
    ChildProcess locker = start({"xsecurelock"});
    ASSERT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kLockedAndShown);
    EXPECT_EQ(session->lockerWindows().front().frame, kBothMonitors);
    const std::vector<Rect> usual{{705, 355, 190, 190}};
    EXPECT_EQ(zones(), usual);
    // It opens its prompt once it holds the keyboard.
    constexpr unsigned kKeyA = 38;
    ASSERT_TRUE(runUntil(loop(), [&] { return client->type(kKeyA), zones() != usual; }));
    EXPECT_LT(zones().front().width, 1600);
    EXPECT_EQ(zones().front().height, 190) << "no card has to move";

    // Its window is inside the server's overlay, which is not listed: it is found all the same.
    stopWatching();
    watch();
    EXPECT_TRUE(isLocked());
    EXPECT_EQ(session->lockerWindows().size(), 1u);
    EXPECT_FALSE(zones().empty());
    locker.end(SIGKILL);
    EXPECT_TRUE(waitForNotices(3));
    EXPECT_EQ(take(), (Notices{"LockUIIsShown", "LockUIIsHidden", "IsUnlocked"}));
}

TEST_F(RealLockers, XscreensaverThatOnlyBlanksIsNoLock) {
    // It does not lock as root; any other account will do.
    const auto startAsUser = [this](std::vector<std::string> arguments) {
        if (geteuid() == 0)
            arguments.insert(arguments.begin(),
                             {"setpriv", "--reuid=games", "--regid=games", "--clear-groups"});
        return start(arguments);
    };
    // The first number that the daemon publishes: an atom, 0 while the screen is in use, -1 before
    // there is a daemon.
    const auto status = [this]() -> std::int64_t {
        const auto numbers = numbersOf(client->connection(), client->root(),
                                       client->atom("_SCREENSAVER_STATUS"), XCB_ATOM_INTEGER);
        return numbers.empty() ? -1 : std::int64_t{numbers.front()};
    };
    watch();
    home.write(".xscreensaver",
               "mode: blank\nsplash: False\nfade: False\nlockTimeout: 0:00:00\nlock: False\n");
    if (geteuid() == 0) start({"chown", "-R", "games", home.path()}).wait(std::chrono::seconds{10});
    const X11Client bell{server.display()};
    Handle properties = bell.wakeOnRootProperties(loop());
    const ChildProcess daemon = startAsUser({"xscreensaver", "--no-splash"});
    ASSERT_TRUE(runUntil(loop(), [&] { return status() >= 0; }));
    properties.reset();
    startAsUser({"xscreensaver-command", "--activate"}).wait(std::chrono::seconds{10});
    const auto covers = [this](xcb_window_t window) {
        return client->isViewable(window) && client->frame(window).width == 1600;
    };
    ASSERT_TRUE(runUntil(
        loop(), [&] { return std::ranges::any_of(client->children(client->root()), covers); }));
    EXPECT_EQ(takeSettled(), Notices{});
    EXPECT_EQ(status(), client->atom("BLANK"));
}

}  // namespace
}  // namespace quorvane
