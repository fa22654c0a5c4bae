// Card windows inside a locker's window: where they are, when they are visible, and their end.
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
        return viewer->isViewable(cardWindow());
    }
    xcb_window_t mapInLocker(const Rect& frame, std::uint32_t color) {
        const xcb_window_t made = client->makeWindow(frame, true, lockerWindow);
        setBackground(made, color);
        client->map(made);
        settle();
        return made;
    }
};

TEST_F(CardWindow, StandsInsideTheLockersAndIsNeverRaised) {
    open();
    log.take();
    EXPECT_EQ(windows.makeWindow(place(), screen()), nullptr) << "without a locker";
    EXPECT_EQ(log.take().size(), 1u);
    lock();
    makeCard();
    showCard();
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(viewer->connection(), lockerWindow, XCB_CW_EVENT_MASK, &mask);
    settle();
    EXPECT_EQ(viewer->parent(cardWindow()), lockerWindow);
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->occlusionState(), 2u);

    stage->springFrom({0.94, {252, 163}, {0, 12}}, {0.5, 0.05});
    for (int frame = 0; frame < 90; ++frame) advance(milliseconds{17});
    settle();
    while (xcb_generic_event_t* event = xcb_poll_for_event(viewer->connection())) {
        const int type = event->response_type & 0x7f;
        EXPECT_TRUE(type != XCB_CONFIGURE_NOTIFY && type != XCB_CIRCULATE_NOTIFY);
        std::free(event);
    }
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(CardWindow, IsOnTheServerOnlyWhileSomethingIsSeenAndFadesAlongItsCurve) {
    lock(0xff000000);
    const Pixels before = look();
    makeCard();
    stage->setScene(sceneOf({{{100, 100, 20, 20}, 0, Color::white()}}));
    EXPECT_FALSE(isMapped()) << "alpha 0, stage hidden";
    EXPECT_TRUE(window->isVisible());
    window->setAlpha(1);
    EXPECT_FALSE(isMapped()) << "stage hidden";
    window->setAlpha(0);
    stage->setHidden(false);

    int completed = 0;
    window->animateAlpha(1, milliseconds{300}, [&] { ++completed; });
    const auto brightness = [&] { return static_cast<int>(pixelAt(410, 262) & 0xff); };
    advance(Duration{});
    EXPECT_EQ(brightness(), 0);
    advance(milliseconds{75});
    EXPECT_TRUE(isMapped());
    EXPECT_NEAR(brightness(), 255 * easeInOut(0.25), 12) << "one frame early at most";
    EXPECT_EQ(completed, 0);
    advance(milliseconds{275});
    EXPECT_EQ(brightness(), 255);
    EXPECT_EQ(completed, 1);
    EXPECT_EQ(clock.pendingTimers(), 0u) << "no timer runs at rest";

    window->animateAlpha(0, milliseconds{200}, [this] { stage->setHidden(true); });
    advance(milliseconds{100});
    EXPECT_TRUE(isMapped());
    advance(milliseconds{150});
    EXPECT_FALSE(isMapped());
    EXPECT_EQ(look(), before);
    window->orderOut();
    EXPECT_FALSE(window->isVisible());
}

TEST_F(CardWindow, ALaterFadeTakesOverWhereTheFirstOneIs) {
    showLocked();
    std::vector<int> completed;
    const auto fade = [&](double alpha, int number) {
        window->animateAlpha(alpha, milliseconds{200},
                             [&completed, number] { completed.push_back(number); });
    };
    fade(0, 1);
    advance(milliseconds{100});
    fade(1, 2);
    EXPECT_TRUE(completed.empty()) << "never inside the call";
    advance(milliseconds{1});
    EXPECT_EQ(completed, std::vector<int>{1});
    EXPECT_TRUE(isMapped());
    advance(milliseconds{250});
    EXPECT_EQ(completed.back(), 2);

    fade(0, 3);
    window->setAlpha(1);
    advance(Duration{});
    EXPECT_EQ(completed.back(), 3);
    EXPECT_TRUE(isMapped());
    window->orderOut();
    fade(0, 4);
    advance(milliseconds{200});
    EXPECT_EQ(completed, (std::vector<int>{1, 2, 3, 4})) << "also while the window is hidden";
}

TEST_F(CardWindow, SpringsFromItsStartToItsPlace) {
    lock(0xff000000);
    makeCard();
    stage->setScene(sceneOf({{{190, 100, 20, 20}, 0, {0, 1, 0, 1}}}));  // at 490, 252
    showCard();
    EXPECT_EQ(pixelAt(500, 253), kGreen);
    const auto spring = [&] { stage->springFrom({1, {252, 163}, {0, 40}}, {0.5, 0.05}); };
    const auto expectAtRest = [&] {
        EXPECT_EQ(pixelAt(500, 253), kGreen);
        EXPECT_EQ(clock.pendingTimers(), 0u);
    };
    spring();
    advance(Duration{});
    EXPECT_NE(pixelAt(500, 253), kGreen);
    EXPECT_EQ(pixelAt(500, 302), kGreen);
    advance(milliseconds{2000});
    expectAtRest();
    spring();
    advance(milliseconds{50});
    stage->removeAnimations();
    advance(Duration{});
    expectAtRest();
}

TEST_F(CardWindow, DrawsOnlyWhatIsDifferent) {
    lock();
    makeCard();
    const ShapeNode other{{300, 20, 30, 30}, 0, {0, 0, 1, 1}};
    stage->setScene(sceneOf({kGreenSquare, other}));
    showCard();
    // Another client fills the card's window, so that every area drawn afterwards is visible.
    fill(*viewer, cardWindow(), {0, 0, 504, 326}, kRed);
    stage->setScene(sceneOf({kGreenSquare, other}));
    EXPECT_EQ(std::ranges::count(look().values, kRed), 504 * 326) << "an equal scene draws nothing";

    ShapeNode moved = kGreenSquare;
    moved.frame.x += 10;
    stage->setScene(sceneOf({moved, other}));
    const Pixels shot = look();
    EXPECT_EQ(shot.at(415, 260), kGreen);
    EXPECT_EQ(std::ranges::count(shot.values, kGreen), 20 * 20);
    EXPECT_EQ(std::ranges::count(shot.values, kRed), 504 * 326 - 30 * 20);
}

TEST_F(CardWindow, GoesWithItsLockerQuietly) {
    showLocked();
    const long number = window->number();
    int completed = 0;
    window->animateAlpha(0, milliseconds{200}, [&] { ++completed; });
    advance(milliseconds{50});
    client->disconnect();
    ASSERT_TRUE(runUntil(loop(), [this] { return !window->isVisible(); }));
    mainThread.run();
    EXPECT_EQ(completed, 1);
    EXPECT_EQ(window->number(), number);
    EXPECT_EQ(window->occlusionState(), 0u);
    EXPECT_EQ(clock.pendingTimers(), 0u);

    window->orderFrontRegardless();
    window->animateAlpha(1, milliseconds{200}, [&] { ++completed; });
    stage->setScene(sceneOf({kGreenSquare}));
    window->setFrame(place(100, 50).frame, screen());
    advance(milliseconds{300});
    EXPECT_EQ(completed, 2);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(CardWindow, StandsUnderThePromptAndOverThePictureOfTheLocker) {
    lock();
    mapInLocker(kWholeScreen, 0xff101010);
    mapInLocker({320, 170, 40, 40}, kRed);
    const xcb_window_t late = client->makeWindow({600, 180, 40, 40}, true, lockerWindow);
    setBackground(late, kRed);
    settle();
    makeCard(kWindowX, -40);
    stage->setScene(sceneOf({kGreenSquare}));
    showCard();
    EXPECT_NE(pixelAt(500, 150), 0xff101010) << "the card, whose margin is partly off the screen";
    EXPECT_EQ(pixelAt(340, 190), kRed) << "the prompt that is already open";
    const Pixels before = look();
    client->map(late);
    EXPECT_EQ(pixelAt(620, 200), kRed) << "the prompt that opens later, and does not raise itself";
    client->destroy(late);
    client->destroy(mapInLocker({350, 100, 200, 100}, kRed));
    EXPECT_EQ(look(), before) << "the covered area is drawn again";
}

TEST_F(CardWindow, ReportsWhenItIsCoveredWhileItIsOnTheScreen) {
    showLocked();
    std::vector<bool> reports;
    window->setCoverObserver([&](bool isCovered) { reports.push_back(isCovered); });
    const auto expect = [&](std::vector<bool> expected) {
        settle();
        EXPECT_EQ(reports, expected);
    };
    client->destroy(mapInLocker({248, 100, 500, 326}, kRed));
    expect({});
    client->destroy(mapInLocker(kWholeScreen, kRed));
    expect({true, false});
    mapInLocker(kWholeScreen, kRed);
    EXPECT_EQ(window->occlusionState(), 0u);
    stage->setHidden(true);
    expect({true, false, true, false});
}

TEST_F(CardWindow, LeavesOutWhatIsToBeKeptClear) {
    showLocked();
    EXPECT_NE(pixelAt(500, 384), kLockerColor) << "the shadow";
    Screen needed = screen();
    needed.keepClear = {{400, 700 - 500, 200, 120}};  // from 380 pixels below the top
    window->setFrame(place().frame, needed);
    EXPECT_EQ(pixelAt(500, 384), kLockerColor);
    EXPECT_NE(pixelAt(390, 384), kLockerColor);
    needed.keepClear = {};
    window->setFrame(place().frame, needed);
    EXPECT_NE(pixelAt(500, 384), kLockerColor);
}

}  // namespace
}  // namespace quorvane
