// Card windows inside a locker's window: where they stand, when they are seen, and their end.
#include "platform/linux/x11/XcbReply.hpp"
#include "tests/platform/linux/card/CardFixture.hpp"

namespace quorvane {
namespace {

using std::chrono::milliseconds;

constexpr std::uint32_t kRed = 0xffff0000;
const ShapeNode kGreenSquare{{100, 100, 20, 20}, 0, {0, 1, 0, 1}};
constexpr std::uint32_t kGreen = 0xff00ff00;

class CardWindow : public CardFixture {
protected:
    bool isMapped() {
        settle();
        const auto attributes =
            xcbReply(xcb_get_window_attributes_reply, viewer->connection(),
                     xcb_get_window_attributes(viewer->connection(), cardWindow()));
        return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    // The restackings and moves inside the locker's window since the last call.
    int restackings() {
        settle();
        int count = 0;
        while (xcb_generic_event_t* event = xcb_poll_for_event(viewer->connection())) {
            const int type = event->response_type & 0x7f;
            count += type == XCB_CONFIGURE_NOTIFY || type == XCB_CIRCULATE_NOTIFY;
            std::free(event);
        }
        return count;
    }
    void watchInside(xcb_window_t parent) {
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(viewer->connection(), parent, XCB_CW_EVENT_MASK, &mask);
        viewer->sync();
    }
};

TEST_F(CardWindow, StandsInsideTheLockersAndIsNeverRaised) {
    lock();
    const Screenshot before = look();
    makeCard();
    showCard();
    watchInside(lockerWindow);
    const auto tree = xcbReply(xcb_query_tree_reply, viewer->connection(),
                               xcb_query_tree(viewer->connection(), cardWindow()));
    ASSERT_TRUE(tree);
    EXPECT_EQ(tree->parent, lockerWindow);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->occlusionState(), 2u);

    const Screenshot after = look();
    int changedInside = 0;
    for (int y = 0; y < after.height; ++y)
        for (int x = 0; x < after.width; ++x) {
            const bool isInside =
                x >= kWindowX && x < kWindowX + 504 && y >= kWindowY && y < kWindowY + 326;
            if (before.at(x, y) == after.at(x, y)) continue;
            ASSERT_TRUE(isInside) << x << ", " << y;
            ++changedInside;
        }
    EXPECT_GT(changedInside, 400 * 200);
    EXPECT_EQ(after.at(kWindowX, kWindowY), kLockerColor) << "the margin's corner";
    EXPECT_NE(after.at(500, 140), kLockerColor) << "the shadow";

    stage->springFrom({0.94, {252, 163}, {0, 12}}, {0.5, 0.05});
    for (int frame = 0; frame < 90; ++frame) advance(milliseconds{17});
    EXPECT_EQ(restackings(), 0);
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(CardWindow, NeedsALocker) {
    open();
    EXPECT_EQ(windows.makeWindow(settings(), screen()), nullptr);
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(log.lines().front().level, LogLevel::error);
    EXPECT_EQ(log.lines().front().category, "windows");
}

TEST_F(CardWindow, IsOnTheServerOnlyWhileSomethingIsSeen) {
    lock();
    const Screenshot before = look();
    makeCard();
    EXPECT_FALSE(isMapped()) << "alpha 0, stage hidden";
    EXPECT_TRUE(window->isVisible());
    window->setAlpha(1);
    EXPECT_FALSE(isMapped()) << "stage hidden";
    stage->setHidden(false);
    EXPECT_TRUE(isMapped());
    EXPECT_NE(look(), before);

    window->animateAlpha(0, milliseconds{200}, [this] { stage->setHidden(true); });
    advance(milliseconds{100});
    EXPECT_TRUE(isMapped());
    advance(milliseconds{150});
    EXPECT_FALSE(isMapped());
    EXPECT_EQ(look(), before);
    window->orderOut();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(CardWindow, FadesAlongItsCurveAndRests) {
    lock(0xff000000);
    makeCard();
    stage->setScene(sceneOf({{{100, 100, 20, 20}, 0, Color::white()}}));
    stage->setHidden(false);
    int completed = 0;
    window->animateAlpha(1, milliseconds{300}, [&] { ++completed; });
    EXPECT_EQ(completed, 0);
    const auto brightness = [&] { return static_cast<int>(pixelAt(410, 262) & 0xff); };
    advance(Duration{});
    EXPECT_EQ(brightness(), 0);
    advance(milliseconds{75});
    EXPECT_NEAR(brightness(), 255 * easeInOut(0.25), 12) << "one frame early at most";
    advance(milliseconds{75});
    EXPECT_NEAR(brightness(), 255 / 2, 20);
    EXPECT_EQ(completed, 0);
    advance(milliseconds{200});
    EXPECT_EQ(brightness(), 255);
    EXPECT_EQ(completed, 1);
    EXPECT_EQ(clock.pendingTimers(), 0u) << "nothing ticks at rest";
}

TEST_F(CardWindow, ALaterFadeTakesOverWhereTheFirstOneIs) {
    showLocked();
    std::vector<int> completed;
    window->animateAlpha(0, milliseconds{200}, [&] { completed.push_back(1); });
    advance(milliseconds{100});
    window->animateAlpha(1, milliseconds{200}, [&] { completed.push_back(2); });
    EXPECT_TRUE(completed.empty()) << "never inside the call";
    advance(milliseconds{1});
    EXPECT_EQ(completed, std::vector<int>{1});
    EXPECT_TRUE(isMapped());
    advance(milliseconds{250});
    EXPECT_EQ(completed, (std::vector<int>{1, 2}));

    window->animateAlpha(0, milliseconds{200}, [&] { completed.push_back(3); });
    window->setAlpha(1);
    advance(Duration{});
    EXPECT_EQ(completed.back(), 3);
    EXPECT_TRUE(isMapped());
    window->orderOut();
    window->animateAlpha(0, milliseconds{200}, [&] { completed.push_back(4); });
    advance(milliseconds{200});
    EXPECT_EQ(completed.back(), 4) << "also where nobody sees it";
}

TEST_F(CardWindow, SpringsFromItsStartToItsPlace) {
    lock(0xff000000);
    makeCard();
    stage->setScene(sceneOf({{{190, 100, 20, 20}, 0, {0, 1, 0, 1}}}));  // at 490, 252
    showCard();
    EXPECT_EQ(pixelAt(500, 253), kGreen);
    stage->springFrom({1, {252, 163}, {0, 40}}, {0.5, 0.05});
    advance(Duration{});
    EXPECT_NE(pixelAt(500, 253), kGreen);
    EXPECT_EQ(pixelAt(500, 302), kGreen);
    advance(milliseconds{2000});
    EXPECT_EQ(pixelAt(500, 253), kGreen);
    EXPECT_EQ(clock.pendingTimers(), 0u);

    stage->springFrom({1, {252, 163}, {0, 40}}, {0.5, 0.05});
    advance(milliseconds{50});
    stage->removeAnimations();
    advance(Duration{});
    EXPECT_EQ(pixelAt(500, 253), kGreen);
    EXPECT_EQ(clock.pendingTimers(), 0u);
}

TEST_F(CardWindow, DrawsOnlyWhatIsDifferent) {
    lock();
    makeCard();
    const ShapeNode other{{300, 20, 30, 30}, 0, {0, 0, 1, 1}};
    stage->setScene(sceneOf({kGreenSquare, other}));
    showCard();
    paintOver(kRed);
    stage->setScene(sceneOf({kGreenSquare, other}));
    Screenshot shot = look();
    EXPECT_EQ(std::ranges::count(shot.pixels, kRed), 504 * 326) << "an equal scene draws nothing";

    ShapeNode moved = kGreenSquare;
    moved.frame.x += 10;
    stage->setScene(sceneOf({moved, other}));
    shot = look();
    EXPECT_EQ(shot.at(415, 260), kGreen);
    EXPECT_EQ(std::ranges::count(shot.pixels, kGreen), 20 * 20);
    EXPECT_EQ(std::ranges::count(shot.pixels, kRed), 504 * 326 - 30 * 20);
}

TEST_F(CardWindow, RepairsWhatWasCovered) {
    lock();
    makeCard();
    stage->setScene(sceneOf({kGreenSquare}));
    showCard();
    const Screenshot before = look();
    const xcb_window_t cover = locker->makeWindow({350, 200, 200, 100}, {}, lockerWindow);
    setBackground(cover, kRed);
    locker->map(cover);
    EXPECT_NE(look(), before);
    locker->destroy(cover);
    EXPECT_EQ(look(), before);
}

TEST_F(CardWindow, GoesWithItsLockerQuietly) {
    showLocked();
    const long number = window->number();
    int completed = 0;
    window->animateAlpha(0, milliseconds{200}, [&] { ++completed; });
    advance(milliseconds{50});
    locker->disconnect();
    ASSERT_TRUE(runUntil(loop, [this] { return !window->isVisible(); }));
    mainThread.run();
    EXPECT_EQ(completed, 1);
    EXPECT_EQ(window->number(), number);
    EXPECT_EQ(window->occlusionState(), 0u);
    EXPECT_EQ(clock.pendingTimers(), 0u);

    window->orderFrontRegardless();
    window->animateAlpha(1, milliseconds{200}, [&] { ++completed; });
    stage->setScene(sceneOf({kGreenSquare}));
    window->setFrame(settings(100, 50).frame, screen());
    window->setIgnoresMouseEvents(true);
    advance(milliseconds{300});
    EXPECT_EQ(completed, 2);
    EXPECT_FALSE(window->isVisible());
    window->close();
    settle();
    EXPECT_FALSE(xcb_connection_has_error(session->connection()));
}

TEST_F(CardWindow, StandsUnderThePromptAndOverThePictureOfTheLocker) {
    lock();
    const xcb_window_t picture = locker->makeWindow(kWholeScreen, {}, lockerWindow);
    setBackground(picture, 0xff101010);
    locker->map(picture);
    const xcb_window_t early = locker->makeWindow({320, 170, 40, 40}, {}, lockerWindow);
    setBackground(early, kRed);
    locker->map(early);
    const xcb_window_t late = locker->makeWindow({600, 180, 40, 40}, {}, lockerWindow);
    setBackground(late, kRed);
    settle();
    makeCard(kWindowX, -40);
    showCard();
    EXPECT_NE(pixelAt(500, 150), 0xff101010) << "the card, whose margin is not all on the screen";
    EXPECT_EQ(pixelAt(340, 190), kRed) << "the prompt that was open";
    locker->map(late);
    EXPECT_EQ(pixelAt(620, 200), kRed) << "the prompt that opens later, and does not raise itself";
}

TEST_F(CardWindow, LeavesOutWhatIsToBeKeptClear) {
    showLocked();
    EXPECT_NE(pixelAt(500, 384), kLockerColor) << "the shadow";
    Screen needed = screen();
    needed.keepClear = {{400, 700 - 500, 200, 120}};  // from 380 pixels below the top
    window->setFrame(settings().frame, needed);
    EXPECT_EQ(pixelAt(500, 384), kLockerColor);
    EXPECT_NE(pixelAt(390, 384), kLockerColor);
    needed.keepClear = {};
    window->setFrame(settings().frame, needed);
    EXPECT_NE(pixelAt(500, 384), kLockerColor);
}

TEST_F(CardWindow, IsAsSharpAsItsScreen) {
    setenv("QUORVANE_SCALE", "1.5", 1);
    lock();
    unsetenv("QUORVANE_SCALE");
    ASSERT_EQ(screen().scale, 1.5);
    makeCard(20, 30);
    stage->setScene(sceneOf({kGreenSquare}));
    showCard();
    const auto geometry = xcbReply(xcb_get_geometry_reply, viewer->connection(),
                                   xcb_get_geometry(viewer->connection(), cardWindow()));
    ASSERT_TRUE(geometry);
    EXPECT_EQ(geometry->width, 756);
    EXPECT_EQ(geometry->height, 489);
    EXPECT_EQ(geometry->x, 30);
    const Screenshot shot = look();
    EXPECT_EQ(std::ranges::count(shot.pixels, kGreen), 30 * 30);
    EXPECT_EQ(shot.at(30 + 228, 45 + 228), kGreen);
}

}  // namespace
}  // namespace quorvane
