#include "Quorvane_Lock_Screen/CardWindowController.hpp"

#include <gtest/gtest.h>

#include "tests/support/FakePlatform.hpp"

namespace quorvane {
namespace {

constexpr PresentationState kUnlocked{};
constexpr PresentationState kSilent{true, true, true, true, false};
constexpr PresentationState kExpected{true, true, false, true, true};
constexpr PresentationState kPlaying{true, true, true, true, true};

// Content that only counts how many instances are shown and how many are frozen.
struct FakeContent : CardContent {
    FakeContent(int& shown, int& frozen) : shownContents(shown), frozenContents(frozen) {}
    ~FakeContent() override { setShown(false); }
    void setShown(bool shown) override {
        shownContents += shown - std::exchange(isShown, shown);
        frozenContents -= std::exchange(isFrozen, false);
    }
    void freeze() override { frozenContents += !std::exchange(isFrozen, true); }

    int& shownContents;
    int& frozenContents;
    bool isShown = false;
    bool isFrozen = false;
};

struct CardWindowControllerTest : testing::Test, FakePlatform {
    CardWindowControllerTest() {
        screens.list.push_back({.frame = {1920, 0, 1280, 1024}, .scale = 2});
        makeController(std::nullopt);
    }
    void makeController(const std::optional<DynamicLoader>& loader) {
        const auto makeContent = [this](const Screen& screen, const std::shared_ptr<CardStage>&) {
            contentScale = screen.scale;
            return std::make_unique<FakeContent>(shownContents, frozenContents);
        };
        controller.emplace(
            makeContent,
            CardWindowController::Services{.log = log.sink(),
                                           .windows = live.cardWindows,
                                           .screens = live.screens,
                                           .mainThread = mainThread.mainThread(),
                                           .beginActivity = live.beginActivity,
                                           .noteRoom = [this](bool has) { hasRoom = has; }},
            loader);
    }
    void setKeepClear(std::vector<Rect> areas) {
        screens.list[0].keepClear = std::move(areas);
        screens.keepClearChanged();
    }

    int shownContents = 0;
    int frozenContents = 0;
    double contentScale = 0;
    std::optional<bool> hasRoom;
    std::optional<CardWindowController> controller;
};

TEST_F(CardWindowControllerTest, BuildsOneWindowAScreenAndShowsTheCardsAfterThePass) {
    controller->present(kPlaying);
    ASSERT_EQ(windows.open().size(), 2u);
    EXPECT_EQ(activities, 1);
    EXPECT_TRUE(windows.stages[0]->isHidden);  // not yet
    mainThread.run();
    EXPECT_EQ(windows.stages[0]->springs, 1);
    EXPECT_TRUE(isCardSeen(0) && isCardSeen(1));
    EXPECT_EQ(activityOptions, 0x00EFFFFFu);
    EXPECT_EQ(windows.stages[0]->lastStart.scale, 0.94);
    EXPECT_EQ(windows.stages[0]->lastStart.centre, (Point{252, 163}));
    EXPECT_EQ(windows.stages[0]->lastStart.offset, (Point{0, 12}));
    EXPECT_EQ(windows.windows[0]->frame, (Rect{708, 482, 504, 326}));
    EXPECT_EQ(windows.windows[1]->frame, (Rect{2308, 443, 504, 326}));

    controller->present(kUnlocked);
    EXPECT_TRUE(windows.open().empty());
    EXPECT_TRUE(windows.windows[0]->isClosed && windows.windows[0]->content.expired());
    EXPECT_EQ(activities + shownContents, 0);
}

TEST_F(CardWindowControllerTest, RehearsesACardWhileOnlyTheDelayHoldsItBack) {
    controller->present({true, true, false, true, false});
    mainThread.run();
    controller->present(kExpected);
    controller->present(kUnlocked);  // before the pass has ended
    mainThread.run();
    EXPECT_EQ(windows.stages.size(), 0u);
    controller->present(kExpected);
    mainThread.run();
    EXPECT_EQ(windows.stages.size(), 1u);
    EXPECT_EQ(windows.stages[0].use_count(), 1);  // destroyed again
    EXPECT_EQ(shownContents, 0);
    EXPECT_TRUE(windows.windows.empty());
}

TEST_F(CardWindowControllerTest, ADeferredShowDoesNothingAfterAChangeOfState) {
    controller->present(kPlaying);
    controller->present(kSilent);  // before the pass has ended
    mainThread.run();
    EXPECT_TRUE(windows.stages[0]->isHidden);
    controller->present(kUnlocked);
    controller->present(kPlaying);
    controller.reset();
    EXPECT_EQ(mainThread.run(), 1);
    EXPECT_TRUE(windows.stages.back()->isHidden);
}

TEST_F(CardWindowControllerTest, HiddenWindowsLetClicksThroughUntilTheMusicStarts) {
    controller->present(kSilent);
    EXPECT_EQ(mainThread.run(), 0);
    ASSERT_EQ(windows.open().size(), 2u);
    EXPECT_TRUE(windows.open()[0]->ignoresMouseEvents);
    EXPECT_EQ(windows.open()[0]->alpha, 0);
    controller->present(kPlaying);
    EXPECT_TRUE(isCardSeen(0) && isCardSeen(1));
    EXPECT_EQ(shownContents, 2);

    controller->present(kSilent);
    EXPECT_TRUE(windows.open()[0]->ignoresMouseEvents);
    EXPECT_FALSE(windows.stages[0]->isHidden);  // the fade runs
    EXPECT_FALSE(isCardSeen(0));                // and ends here
    EXPECT_TRUE(windows.stages[0]->isHidden);
    EXPECT_EQ(shownContents, 1);    // the other window's fade still runs
    controller->present(kPlaying);  // ends that fade, whose completion finds the card shown
    EXPECT_FALSE(windows.stages[1]->isHidden);
    EXPECT_TRUE(isCardSeen(0) && isCardSeen(1));
    EXPECT_EQ(shownContents, 2);
    EXPECT_TRUE(log.contains("card: fading in on 2 window(s)"));
    EXPECT_TRUE(log.contains("card: fading out on 2 window(s)"));
    EXPECT_EQ(windows.windows[0]->fades, (std::vector<double>{1, 0, 1}));
    EXPECT_TRUE(log.contains("exit: window 101"));
}

TEST_F(CardWindowControllerTest, ACardThatNobodySeesRestsAndAppearsAtOnceWhenItIsSeen) {
    controller->present(kPlaying);
    mainThread.run();
    screens.unseen(Unseen::displaysAsleep, true);
    EXPECT_EQ(frozenContents, 2);
    EXPECT_EQ(windows.windows[0]->alpha, 1);  // the entrance has ended
    EXPECT_TRUE(windows.windows[0]->ignoresMouseEvents);
    screens.unseen(Unseen::sessionInBackground, true);
    screens.unseen(Unseen::displaysAsleep, false);
    EXPECT_EQ(frozenContents, 2);
    screens.unseen(Unseen::sessionInBackground, false);
    EXPECT_EQ(frozenContents, 0);
    windows.windows[1]->covered(true);
    EXPECT_EQ(frozenContents, 1);
    windows.windows[1]->covered(false);
    EXPECT_TRUE(isCardSeen(0) && isCardSeen(1));

    screens.unseen(Unseen::displaysAsleep, true);
    controller->present(kSilent);
    EXPECT_TRUE(windows.stages[0]->isHidden);  // without a fade
    screens.unseen(Unseen::displaysAsleep, false);
    EXPECT_EQ(shownContents, 0);
    // Built, or shown again, while the displays sleep.
    for (const PresentationState& before : {kSilent, kUnlocked}) {
        controller->present(before);
        screens.unseen(Unseen::displaysAsleep, true);
        controller->present(kPlaying);
        mainThread.run();
        EXPECT_EQ(shownContents, 0);
        EXPECT_TRUE(windows.open()[0]->ignoresMouseEvents);
        EXPECT_EQ(windows.open()[0]->alpha, 0);
        screens.unseen(Unseen::displaysAsleep, false);
        EXPECT_TRUE(isCardSeen(0) && isCardSeen(1));
        EXPECT_EQ(shownContents, 2);
    }
    EXPECT_TRUE(windows.windows.back()->fades.empty());
}

TEST_F(CardWindowControllerTest, ReducedMotionFadesWithoutASpring) {
    windows.reducesMotion = true;
    controller->present(kPlaying);
    mainThread.run();
    EXPECT_EQ(windows.stages[0]->springs, 0);
    EXPECT_EQ(windows.windows[0]->fades, (std::vector<double>{1}));
    EXPECT_TRUE(log.contains("entrance: window 101, reduce motion true"));
}

TEST_F(CardWindowControllerTest, AScreenChangeRebuildsWithoutASecondEntrance) {
    controller->present(kPlaying);
    mainThread.run();
    screens.changed();  // the same screens again
    EXPECT_EQ(windows.windows.size(), 2u);
    log.take();
    screens.list.pop_back();
    screens.changed();
    mainThread.run();
    ASSERT_EQ(windows.open().size(), 1u);
    EXPECT_TRUE(isCardSeen(0));
    EXPECT_EQ(windows.stages.back()->springs, 0);
    EXPECT_EQ(activities, 1);
    EXPECT_EQ(log.take().front(), "screens changed: 1 screen(s), 2 window(s), windows wanted true");
    screens.list[0].scale = 3;
    screens.changed();
    mainThread.run();
    EXPECT_EQ(windows.stages.back()->springs, 0);
}

TEST_F(CardWindowControllerTest, MovesAwayFromAPromptAndBack) {
    controller->present(kPlaying);
    const Rect stated = windows.windows[0]->frame;
    screens.list[1].keepClear = {{2000, 900, 100, 100}};
    setKeepClear({{860, 440, 200, 200}});
    EXPECT_EQ(windows.windows[0]->frame.minY(), 640);
    EXPECT_EQ(windows.windows[0]->screen.keepClear.size(), 1u);
    EXPECT_EQ(windows.windows[1]->screen.keepClear.size(), 1u);
    setKeepClear({});
    EXPECT_EQ(windows.windows[0]->frame, stated);
    EXPECT_EQ(windows.windows.size(), 2u);  // moved, never rebuilt

    setKeepClear({{0, 0, 1920, 1080}});  // no place left on this screen
    EXPECT_EQ(windows.open().size(), 1u);
    EXPECT_EQ(hasRoom, true);
    setKeepClear({});
    EXPECT_EQ(windows.open().size(), 2u);
}

TEST_F(CardWindowControllerTest, BuildsASmallerCardWhereRoomIsShort) {
    screens.list = {{.frame = {0, 0, 800, 600}, .scale = 2}};
    controller->present(kPlaying);
    EXPECT_EQ(contentScale, 2);
    setKeepClear({{305, 205, 190, 190}});
    ASSERT_EQ(windows.open().size(), 1u);
    EXPECT_EQ(windows.open()[0]->scale, 0.85);
    EXPECT_EQ(windows.open()[0]->frame.width, 0.85 * 504);
    EXPECT_EQ(windows.open()[0]->screen.scale, 2);
    EXPECT_EQ(contentScale, 1.7);
    setKeepClear({{0, 0, 800, 600}});
    EXPECT_EQ(hasRoom, false);
    setKeepClear({});
    mainThread.run();
    EXPECT_EQ(windows.stages.back()->springs, 1) << "enters when there is room";
}

}  // namespace
}  // namespace quorvane
