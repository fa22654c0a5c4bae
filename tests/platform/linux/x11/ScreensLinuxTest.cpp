// Screens as a real X server arranges them, and the end of the server.
#include "tests/platform/linux/lockers/LockFixture.hpp"

namespace quorvane {
namespace {

class ScreensLinux : public LockFixture {
protected:
    std::vector<Rect> frames() {
        std::vector<Rect> list;
        for (const Screen& screen : session->screens().list()) list.push_back(screen.frame);
        return list;
    }
    // Whether the loop comes to rest: nothing wakes it any more.
    bool isQuiet() {
        for (int turn = 0; turn < 100; ++turn)
            if (sd_event_run(loop().event(), 0) == 0) return true;
        return false;
    }
};

TEST_F(ScreensLinux, FollowTheMonitors) {
    watch();
    int changes = 0;
    const Screens screens = session->screens();
    const Handle observation = screens.observeChanges([&] { ++changes; });
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1600, 900}}));

    // Two steps: a monitor without an output, then one that takes the server's only output.
    const auto reported = [&] { return runUntil(loop(), [&] { return changes > 0; }); };
    server.setMonitor("left", 800, 900, 0, 0);
    server.setMonitor("right", 800, 700, 800, 0, true);
    ASSERT_TRUE(reported());
    // The primary one first, wherever it is; its bottom-left corner is the origin.
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 800, 700}, {-800, -200, 800, 900}}));
    EXPECT_EQ(session->pixelFrame(screens.list()[1]), (Rect{0, 0, 800, 900}));
    changes = 0;
    server.setMonitor("mirror", 800, 700, 800, 0);
    server.deleteMonitor("left");
    ASSERT_TRUE(reported());
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 800, 700}})) << "the same picture once more";
}

TEST_F(ScreensLinux, TakeTheirScaleFromTheDesktopAtEachLock) {
    client->setResources("Xft.dpi:\t144\n");
    client->sync();
    watch();
    EXPECT_EQ(session->screens().list().front().scale, 1.5);
    client->setResources("Xft.dpi:\t192\n");
    standLocker();
    settle();
    EXPECT_TRUE(isQuiet()) << "a standing lock is no work";
    const Screen screen = session->screens().list().front();
    EXPECT_EQ(screen, (Screen{{0, 0, 800, 450}, 2, {{305, 130, 190, 190}}}));
    EXPECT_EQ(session->pixelFrame(screen), kBothMonitors);
}

TEST_F(ScreensLinux, TakeTheDotsPerInchOfTheRootAsItIsNow) {
    server.resizeRoot("800x900", "200x238");
    watch();
    server.resizeRoot("1600x900", "400x119");  // 192 dots per inch
    standLocker();
    settle();
    EXPECT_EQ(zones(), (std::vector<Rect>{{609, 259, 382, 382}}));
}

TEST_F(ScreensLinux, AreTheWholeRootOnAPlainServer) {
    PrivateXServer plain{"1024x768x24", {"-extension", "RANDR", "-extension", "XInputExtension"}};
    auto opened = X11SessionLinux::open(loop(), plain.display(), [] {});
    ASSERT_TRUE(opened) << opened.error().description;
    EXPECT_EQ((*opened)->screens().list(), (std::vector<Screen>{{{0, 0, 1024, 768}, 1, {}}}));
    // Nor are there raw events.
    const Handle pointer = (*opened)->observePointer([](const RawPointerEvent&) {});
    runOnce(loop());
}

TEST_F(ScreensLinux, SurviveTheEndOfTheServer) {
    watch();
    const xcb_window_t window = standLocker();
    settle();
    take();
    server.process().end(SIGKILL);
    ASSERT_TRUE(runUntil(loop(), [this] { return timesLost > 0; }));
    // Everything still answers, out of what was known, and nothing is told a second time.
    const Handle pointer = session->observePointer([](const RawPointerEvent&) {});
    EXPECT_EQ(frames(), (std::vector<Rect>{{0, 0, 1600, 900}}));
    EXPECT_EQ(session->lockerWindows().size(), 1u);
    EXPECT_EQ(session->atom("_A_NEW_NAME"), xcb_atom_t{XCB_ATOM_NONE});
    session->noteOwnWindow(window, true);
    session->flush();
    EXPECT_TRUE(isQuiet()) << "a dead connection is always readable";
    EXPECT_EQ(timesLost, 1);
}

}  // namespace
}  // namespace quorvane
