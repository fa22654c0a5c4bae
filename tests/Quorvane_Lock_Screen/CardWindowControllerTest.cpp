#include "Quorvane_Lock_Screen/CardWindowController.hpp"

#include <gtest/gtest.h>

#include "tests/support/FakeCardWindows.hpp"
#include "tests/support/ManualMainThread.hpp"
#include "tests/support/RecordingLog.hpp"

namespace quorvane {
namespace {

constexpr PresentationState kUnlocked{};
constexpr PresentationState kSilent{true, true, true, true, false};
constexpr PresentationState kExpected{true, true, false, true, true};
constexpr PresentationState kPlaying{true, true, true, true, true};

// Content that only remembers whether it is shown.
class FakeContent : public CardContent {
public:
    explicit FakeContent(int& shown) : shown_(shown) {}
    ~FakeContent() override { setShown(false); }
    void attach(std::shared_ptr<CardStage>) override {}
    void setShown(bool shown) override {
        shown_ += (shown ? 1 : 0) - (isShown_ ? 1 : 0);
        isShown_ = shown;
    }
    void freeze() override {}

private:
    int& shown_;
    bool isShown_ = false;
};

class CardWindowControllerTest : public testing::Test {
protected:
    CardWindowControllerTest() {
        screens_.list = {{.frame = {0, 0, 1920, 1080}},
                         {.frame = {1920, 0, 1280, 1024}, .scale = 2}};
        makeController(std::nullopt);
    }
    void makeController(const std::optional<DynamicLoader>& loader) {
        controller_.emplace(
            [this](const Screen& screen) {
                contentScale_ = screen.scale;
                return std::make_unique<FakeContent>(shownContents_);
            },
            CardWindowController::Services{.log = log_.sink(),
                                           .windows = windows_.table(),
                                           .screens = screens_.table(),
                                           .mainThread = mainThread_.mainThread(),
                                           .beginActivity =
                                               [this](std::uint64_t options, const std::string&) {
                                                   EXPECT_EQ(options, 0x00EFFFFFu);
                                                   ++activities_;
                                                   return Handle{[this] { --activities_; }};
                                               },
                                           .noteRoom = [this](bool has) { hasRoom_ = has; }},
            loader);
    }

    RecordingLog log_;
    FakeCardWindows windows_;
    FakeScreens screens_;
    ManualMainThread mainThread_;
    int activities_ = 0;
    int shownContents_ = 0;
    double contentScale_ = 0;
    std::optional<bool> hasRoom_;
    std::optional<CardWindowController> controller_;
};

TEST_F(CardWindowControllerTest, BuildsOneWindowAScreenAndShowsTheCardsAfterThePass) {
    controller_->present(kPlaying);
    ASSERT_EQ(windows_.open().size(), 2u);
    EXPECT_EQ(activities_, 1);
    EXPECT_TRUE(windows_.stages[0]->isHidden);  // not yet
    mainThread_.run();
    EXPECT_EQ(windows_.stages[0]->springs, 1);
    EXPECT_EQ(windows_.stages[0]->lastStart.scale, 0.94);
    EXPECT_EQ(windows_.stages[0]->lastStart.centre, (Point{252, 163}));
    EXPECT_EQ(windows_.stages[0]->lastStart.offset, (Point{0, 12}));
    EXPECT_TRUE(windows_.isCardSeen(0) && windows_.isCardSeen(1));
    const WindowSettings& settings = windows_.windows[0]->settings;
    EXPECT_EQ(settings.frame, (Rect{708, 482, 504, 326}));
    EXPECT_EQ(settings.styleMask, 128u);
    EXPECT_EQ(settings.level, 1000);
    EXPECT_EQ(settings.collectionBehavior, 337u);
    EXPECT_EQ(
        log_.take(),
        (Lines{"windows: building 2 (state), card true",
               "window 101 on screen 1 {{0, 0}, {1920, 1080}} at {{708, 482}, {504, 326}}",
               "window 102 on screen 2 {{1920, 0}, {1280, 1024}} at {{2308, 443}, {504, 326}}",
               "entrance: window 101, reduce motion false",
               "entrance: window 102, reduce motion false"}));

    controller_->present(kUnlocked);
    EXPECT_TRUE(windows_.open().empty());
    EXPECT_TRUE(windows_.windows[0]->isClosed && windows_.windows[0]->content.expired());
    EXPECT_EQ(activities_, 0);
    EXPECT_EQ(shownContents_, 0);
    EXPECT_EQ(log_.take(), (Lines{"windows: closing 2 (state)"}));
}

TEST_F(CardWindowControllerTest, RehearsesACardWhileOnlyTheDelayHoldsItBack) {
    controller_->present({true, true, false, true, false});
    mainThread_.run();
    controller_->present(kExpected);
    controller_->present(kUnlocked);  // before the pass has ended
    mainThread_.run();
    EXPECT_EQ(windows_.stages.size(), 0u);
    controller_->present(kExpected);
    mainThread_.run();
    EXPECT_EQ(windows_.stages.size(), 1u);
    EXPECT_EQ(windows_.stages[0].use_count(), 1);  // destroyed again
    EXPECT_EQ(shownContents_, 0);
    EXPECT_TRUE(windows_.windows.empty());
}

TEST_F(CardWindowControllerTest, ADeferredShowDoesNothingAfterAChangeOfState) {
    controller_->present(kPlaying);
    controller_->present(kSilent);  // before the pass has ended
    mainThread_.run();
    EXPECT_TRUE(windows_.stages[0]->isHidden);
    controller_->present(kUnlocked);
    controller_->present(kPlaying);
    controller_.reset();
    EXPECT_EQ(mainThread_.run(), 1);
    EXPECT_TRUE(windows_.stages.back()->isHidden);
}

TEST_F(CardWindowControllerTest, HiddenWindowsLetClicksThroughUntilTheMusicStarts) {
    controller_->present(kSilent);
    EXPECT_EQ(mainThread_.run(), 0);
    ASSERT_EQ(windows_.open().size(), 2u);
    EXPECT_TRUE(windows_.open()[0]->ignoresMouseEvents);
    EXPECT_EQ(windows_.open()[0]->alpha, 0);
    controller_->present(kPlaying);
    EXPECT_TRUE(windows_.isCardSeen(0) && windows_.isCardSeen(1));
    EXPECT_EQ(shownContents_, 2);

    controller_->present(kSilent);
    EXPECT_TRUE(windows_.open()[0]->ignoresMouseEvents);
    EXPECT_FALSE(windows_.stages[0]->isHidden);  // the fade runs
    EXPECT_FALSE(windows_.isCardSeen(0));        // and ends here
    EXPECT_TRUE(windows_.stages[0]->isHidden);
    EXPECT_EQ(shownContents_, 1);  // the other window's fade still runs
    EXPECT_TRUE(log_.contains("card: fading in on 2 window(s)"));
    EXPECT_TRUE(log_.contains("card: fading out on 2 window(s)"));
    EXPECT_TRUE(log_.contains("exit: window 101"));
}

TEST_F(CardWindowControllerTest, AnEntranceDuringAnExitWins) {
    controller_->present(kSilent);
    controller_->present(kPlaying);
    EXPECT_TRUE(windows_.isCardSeen(0));
    controller_->present(kSilent);
    controller_->present(kPlaying);  // ends the fade out, whose completion finds the card shown
    EXPECT_FALSE(windows_.stages[0]->isHidden);
    EXPECT_TRUE(windows_.isCardSeen(0));
    EXPECT_EQ(shownContents_, 2);
}

TEST_F(CardWindowControllerTest, ReducedMotionFadesWithoutASpring) {
    windows_.reducesMotion = true;
    controller_->present(kPlaying);
    mainThread_.run();
    EXPECT_EQ(windows_.stages[0]->springs, 0);
    EXPECT_EQ(windows_.windows[0]->fades, (std::vector<double>{1}));
    EXPECT_TRUE(log_.contains("entrance: window 101, reduce motion true"));
}

TEST_F(CardWindowControllerTest, AScreenChangeRebuildsWithoutASecondEntrance) {
    controller_->present(kPlaying);
    mainThread_.run();
    screens_.changed();  // the same screens again
    EXPECT_EQ(windows_.windows.size(), 2u);
    log_.take();
    screens_.list.pop_back();
    screens_.changed();
    mainThread_.run();
    ASSERT_EQ(windows_.open().size(), 1u);
    EXPECT_TRUE(windows_.isCardSeen(0));
    EXPECT_EQ(windows_.stages.back()->springs, 0);
    EXPECT_EQ(activities_, 1);
    EXPECT_EQ(log_.take().front(),
              "screens changed: 1 screen(s), 2 window(s), windows wanted true");
    screens_.list.clear();
    screens_.changed();
    EXPECT_TRUE(windows_.open().empty());
    EXPECT_EQ(activities_, 0);
}

TEST_F(CardWindowControllerTest, MovesAwayFromAPromptAndBack) {
    controller_->present(kPlaying);
    const Rect stated = windows_.windows[0]->frame;
    screens_.list[0].keepClear = {{860, 440, 200, 200}};
    screens_.keepClearChanged();
    EXPECT_EQ(windows_.windows[0]->frame.minY(), 640);
    EXPECT_EQ(windows_.windows[0]->screen.keepClear.size(), 1u);
    screens_.list[0].keepClear.clear();
    screens_.keepClearChanged();
    EXPECT_EQ(windows_.windows[0]->frame, stated);
    EXPECT_EQ(windows_.windows.size(), 2u);  // moved, never rebuilt

    screens_.list[0].keepClear = {{0, 0, 1920, 1080}};  // no place left on this screen
    screens_.keepClearChanged();
    EXPECT_EQ(windows_.open().size(), 1u);
    EXPECT_EQ(hasRoom_, true);
    screens_.list[0].keepClear.clear();
    screens_.keepClearChanged();
    EXPECT_EQ(windows_.open().size(), 2u);
}

TEST_F(CardWindowControllerTest, BuildsASmallerCardWhereRoomIsShort) {
    screens_.list = {{.frame = {0, 0, 800, 600}, .scale = 2}};
    controller_->present(kPlaying);
    EXPECT_EQ(contentScale_, 2);
    screens_.list[0].keepClear = {{305, 205, 190, 190}};
    screens_.keepClearChanged();
    ASSERT_EQ(windows_.open().size(), 1u);
    EXPECT_EQ(windows_.open()[0]->settings.contentScale, 0.85);
    EXPECT_EQ(windows_.open()[0]->frame.width, 0.85 * 504);
    EXPECT_EQ(windows_.open()[0]->screen.scale, 2);
    EXPECT_EQ(contentScale_, 1.7);
    screens_.list[0].keepClear = {{0, 0, 800, 600}};
    screens_.keepClearChanged();
    EXPECT_EQ(hasRoom_, false);
}

TEST_F(CardWindowControllerTest, LeavesNothingBehindWithoutAWindow) {
    windows_.makesWindows = false;
    controller_->present(kPlaying);
    mainThread_.run();
    EXPECT_EQ(activities_, 0);
    controller_->present(kUnlocked);
    EXPECT_FALSE(log_.contains("windows: closing 0 (state)"));
}

TEST_F(CardWindowControllerTest, WithALoaderTheWindowServerLiftsTheWindows) {
    DynamicLoader loader;
    loader.open = [](const char*) -> void* { return nullptr; };
    loader.lastError = [] { return std::nullopt; };
    makeController(loader);
    controller_->present(kPlaying);
    EXPECT_TRUE(log_.contains("put window 102: SkyLight unavailable"));
    EXPECT_EQ(windows_.open().size(), 2u);
}

}  // namespace
}  // namespace quorvane
