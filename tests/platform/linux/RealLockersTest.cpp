// The lockers of the distribution, as real processes on a private X server.
#include <unistd.h>

#include "platform/linux/XcbReply.hpp"
#include "tests/platform/linux/LockFixture.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace quorvane {
namespace {

constexpr unsigned kKeyA = 38;

class RealLockers : public LockFixture {
protected:
    ChildProcess start(std::vector<std::string> arguments) {
        std::vector<std::string> environment{server.environment(), "HOME=" + home.path().string(),
                                             "XSECURELOCK_SAVER=saver_blank"};
        // What they say of a machine without accounts and logins is of no interest.
        arguments.insert(arguments.begin(), {"sh", "-c", "exec \"$@\" >/dev/null 2>&1", "sh"});
        return ChildProcess{arguments, environment};
    }
    void pressKey() {
        client->key(kKeyA, true);
        client->key(kKeyA, false);
        client->sync();
    }
    bool waitForZones(bool areThere) {
        return runUntil(loop(), [&] { return zones().empty() != areThere; });
    }

    TemporaryFolder home;
};

TEST_F(RealLockers, I3lockIsSeenFromItsMapToItsSuddenEnd) {
    useTwoMonitors();
    watch();
    for (int round = 0; round < 2; ++round) {
        ChildProcess locker = start({"i3lock", "-n", "-c", "224466"});
        ASSERT_TRUE(waitForNotices(2));
        EXPECT_EQ(take(), kLockedAndShown);
        ASSERT_EQ(session->lockerWindows().size(), 1u);
        EXPECT_EQ(session->lockerWindows().front().frame, kBothMonitors);
        // One indicator in the middle of each monitor, in the size that i3lock gives it.
        EXPECT_EQ(zones(), (std::vector<Rect>{{301, 351, 198, 198}, {1101, 351, 198, 198}}));
        locker.end(SIGKILL);
        ASSERT_TRUE(waitForNotices(2));
        EXPECT_EQ(take(), kHiddenAndUnlocked);
        EXPECT_TRUE(zones().empty());
    }
}

TEST_F(RealLockers, I3lockIsFoundStanding) {
    ChildProcess locker;
    {
        watch();
        locker = start({"i3lock", "-n"});
        ASSERT_TRUE(waitForNotices(2));
        stopWatching();
        take();
    }
    watch();
    EXPECT_TRUE(isLocked());
    locker.end(SIGKILL);
    EXPECT_TRUE(waitForNotices(3));
    EXPECT_EQ(take(), (Notices{"LockUIIsShown", "LockUIIsHidden", "IsUnlocked"}));
}

TEST_F(RealLockers, XsecurelocksPromptIsKeptClear) {
    watch();
    ChildProcess locker = start({"xsecurelock"});
    ASSERT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kLockedAndShown);
    EXPECT_EQ(session->lockerWindows().front().frame, kBothMonitors);
    EXPECT_TRUE(zones().empty());
    // It opens its prompt once it holds the keyboard.
    ASSERT_TRUE(runUntil(loop(), [&] { return pressKey(), !zones().empty(); }));
    EXPECT_LT(zones().front().width, 1600);

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

class Xscreensaver : public RealLockers {
protected:
    // It does not lock as root; any other account will do.
    std::vector<std::string> asUser(std::vector<std::string> arguments) {
        if (geteuid() != 0) return arguments;
        arguments.insert(arguments.begin(),
                         {"setpriv", "--reuid=games", "--regid=games", "--clear-groups"});
        return arguments;
    }
    void startDaemon(bool locks) {
        home.write(".xscreensaver", std::string{"mode: blank\nsplash: False\nfade: False\n"
                                                "lockTimeout: 0:00:00\nlock: "} +
                                        (locks ? "True\n" : "False\n"));
        std::vector<std::string> owned{"chown", "-R", "games", home.path()};
        if (geteuid() == 0) start(owned).wait(std::chrono::seconds{10});
        const X11Client bell{server.display()};
        const Handle properties = bell.wakeOnRootProperties(loop());
        daemon = start(asUser({"xscreensaver", "--no-splash"}));
        ASSERT_TRUE(runUntil(loop(), [this] { return status() >= 0; }));
    }
    void command(const char* option) {
        start(asUser({"xscreensaver-command", option})).wait(std::chrono::seconds{10});
    }
    // The first number that the daemon publishes: an atom, 0 while the screen is in use, -1 before
    // there is a daemon.
    std::int64_t status() {
        const auto reply =
            xcbReply(xcb_get_property_reply, client->connection(),
                     xcb_get_property(client->connection(), false, client->root(),
                                      client->atom("_SCREENSAVER_STATUS"), XCB_ATOM_INTEGER, 0, 1));
        if (!reply || xcb_get_property_value_length(reply.get()) == 0) return -1;
        return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    }
    // Whether a window of the saver's covers the screen.
    bool isCovered() {
        const auto tree = xcbReply(xcb_query_tree_reply, client->connection(),
                                   xcb_query_tree(client->connection(), client->root()));
        const auto* children = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            const auto geometry = xcbReply(xcb_get_geometry_reply, client->connection(),
                                           xcb_get_geometry(client->connection(), children[i]));
            const auto look =
                xcbReply(xcb_get_window_attributes_reply, client->connection(),
                         xcb_get_window_attributes(client->connection(), children[i]));
            if (geometry && look && geometry->width == 1600 &&
                look->map_state == XCB_MAP_STATE_VIEWABLE)
                return true;
        }
        return false;
    }

    ChildProcess daemon;
};

TEST_F(Xscreensaver, ThatOnlyBlanksIsNoLock) {
    watch();
    startDaemon(false);
    command("--activate");
    ASSERT_TRUE(runUntil(loop(), [this] { return isCovered(); }));
    EXPECT_EQ(takeSettled(), Notices{});
    EXPECT_EQ(status(), client->atom("BLANK"));
}

TEST_F(Xscreensaver, IsSeenUntilItsGuardEnds) {
    watch();
    startDaemon(true);
    command("--lock");
    ASSERT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kLockedAndShown);
    // The process that draws outlives the one that guards, and its window stays.
    daemon.end(SIGKILL);
    ASSERT_TRUE(waitForNotices(2));
    EXPECT_EQ(take(), kHiddenAndUnlocked);
}

}  // namespace
}  // namespace quorvane
