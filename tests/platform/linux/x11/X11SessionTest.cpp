// The session's reports of a real X server: the raw pointer while a locker holds it, the screens.
#include "tests/platform/linux/lockers/LockFixture.hpp"

namespace quorvane {
namespace {

class RawPointerEvents : public LockFixture {
protected:
    void SetUp() override {
        LockFixture::SetUp();
        watch();
        client->movePointer(10, 20);
        ASSERT_TRUE(client->grabPointer());
        ASSERT_TRUE(client->grabKeyboard());
    }
    Handle record() {
        return session->observePointer([this](const RawPointerEvent& event) {
            constexpr const char* kNames[] = {"down", "dragged", "up"};
            seen.push_back(kNames[int(event.kind)] +
                           (event.button ? " " + std::to_string(event.button) : "") + " at " +
                           describe(event.position));
        });
    }
    void act(const std::function<void()>& action) {
        action();
        settle();
    }

    std::vector<std::string> seen;
};

TEST_F(RawPointerEvents, CountButtonsAsTheUsersHandDoes) {
    const Handle observation = record();
    settle();
    // A left-handed mapping with the fourth button disabled.
    const std::uint8_t map[] = {3, 2, 1, 0, 5, 6, 7, 8, 9, 10};
    xcbReply(xcb_set_pointer_mapping_reply, client->connection(),
             xcb_set_pointer_mapping(client->connection(), sizeof map, map));
    act([&] {
        for (const unsigned button : {1u, 3u, 4u})
            client->button(button, true), client->button(button, false);
    });
    EXPECT_EQ(seen, (Lines{"down 3 at {10, 20}", "up 3 at {10, 20}", "down 1 at {10, 20}",
                           "up 1 at {10, 20}"}));
}

TEST_F(RawPointerEvents, AreSelectedOnlyAsFarAsTheyAreWanted) {
    constexpr std::uint32_t kMotion =
        XCB_INPUT_XI_EVENT_MASK_RAW_MOTION | XCB_INPUT_XI_EVENT_MASK_RAW_TOUCH_UPDATE;
    EXPECT_EQ(rawMask(), 0u);
    Handle first = record();
    Handle second = record();
    EXPECT_EQ(rawMask(), kRawPresses);
    act([&] { client->button(1, true); });
    EXPECT_EQ(rawMask(), kRawPresses | kMotion);
    act([&] { client->button(1, false); });
    first.reset();
    EXPECT_EQ(rawMask(), kRawPresses);
    // Dropped in the middle of a press.
    act([&] { client->button(1, true); });
    second.reset();
    EXPECT_EQ(rawMask(), 0u);
    act([&] { client->button(1, false); });

    std::vector<Point> moves;
    Handle moving = session->observePointerMoves([&](Point place) { moves.push_back(place); });
    EXPECT_EQ(rawMask(), kMotion);
    act([&] {
        for (int x = 0; x < 200; ++x) client->movePointer(x, 50);
    });
    ASSERT_FALSE(moves.empty());
    EXPECT_EQ(moves.back(), (Point{199, 50}));
    EXPECT_LT(moves.size(), 200u) << "many moves at once are reported once";
    const Handle third = record();
    seen.clear();
    act([&] { client->movePointer(70, 80); });
    EXPECT_TRUE(seen.empty()) << "no button is down";
    moving.reset();
    EXPECT_EQ(rawMask(), kRawPresses);
}

TEST_F(RawPointerEvents, MayEndTheirOwnObservation) {
    Handle observation;
    int count = 0;
    observation = session->observePointer([&](const RawPointerEvent&) {
        ++count;
        observation.reset();
    });
    settle();
    act([&] { client->button(1, true), client->button(1, false); });
    EXPECT_EQ(count, 1);
}

using ScreensLinux = LockFixture;

TEST_F(ScreensLinux, FollowTheMonitors) {
    watch();
    int changes = 0;
    const Screens screens = session->screens();
    const Handle observation = screens.observeChanges([&] { ++changes; });

    // Two steps: a monitor without an output, then one that takes the server's only output.
    server.setMonitor("left", 800, 900, 0, 0);
    server.setMonitor("right", 800, 700, 800, 0, true);
    ASSERT_TRUE(runUntil(loop(), [&] { return changes > 0; }));
    EXPECT_EQ(changes, 1);
    // The primary one first, wherever it is; its bottom-left corner is the origin.
    std::vector<Rect> frames;
    for (const Screen& screen : screens.list()) frames.push_back(screen.frame);
    EXPECT_EQ(frames, (std::vector<Rect>{{0, 0, 800, 700}, {-800, -200, 800, 900}}));
    EXPECT_EQ(session->pixels(screens.list()[1].frame), (Rect{0, 0, 800, 900}));
}

TEST_F(ScreensLinux, TakeTheirScaleFromTheDesktopAtEachLock) {
    client->setResources("Xft.dpi:\t144\n");
    client->sync();
    watch();
    EXPECT_EQ(session->screens().list().front().scale, 1.5);
    client->setResources("Xft.dpi:\t192\n");
    standLocker();
    settle();
    int turns = 0;
    while (turns < 100 && sd_event_run(loop().event(), 0) != 0) ++turns;
    EXPECT_LT(turns, 100) << "a lock without changes causes no work";
    const Screen screen = session->screens().list().front();
    EXPECT_EQ(screen, (Screen{{0, 0, 800, 450}, 2, {{305, 130, 190, 190}}}));
    EXPECT_EQ(session->pixels(screen.frame), kBothMonitors);
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
    // There are no raw events either.
    const Handle pointer = (*opened)->observePointer([](const RawPointerEvent&) {});
    runOnce(loop());
}

}  // namespace
}  // namespace quorvane
