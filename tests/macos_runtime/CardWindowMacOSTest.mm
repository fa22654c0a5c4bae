// The card's window: its settings in order, its mouse, its fades.
#include "platform/macos/card/CardWindowMacOS.hpp"

#include "Quorvane_Lock_Screen/CardWindow.hpp"
#include "Quorvane_Lock_Screen/GlassCardView.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"
#include "tests/support/ManualClock.hpp"

namespace quorvane {
namespace {

constexpr Rect kFrame{700, 480, 504, 326};

class CardWindowMacOSTest : public macrt::MacTest {
protected:
    void SetUp() override {
        MacTest::SetUp();
        window_ = std::make_unique<CardWindowMacOS>(CardWindow::settings(kFrame), clock_.clock());
        panel_ = (__bridge NSPanel*)macrt::takeCalls().front().receiver;
    }
    void TearDown() override {
        window_ = nullptr;
        macrt::MacTest::TearDown();
    }
    void takeStage() {
        window_->setContent(std::make_shared<CardStageMacOS>(GlassCardView::style()));
        macrt::takeCalls();
    }
    // In the window's coordinates.
    static void movePointer(double x, double y) {
        macrt::setAnswer("NSEvent.mouseLocation", NSPoint{kFrame.x + x, kFrame.y + y});
    }
    CardRootView* root() { return (CardRootView*)panel_.contentView; }

    ManualClock clock_;
    std::unique_ptr<CardWindowMacOS> window_;
    __unsafe_unretained NSPanel* panel_ = nil;
};

TEST_F(CardWindowMacOSTest, IsSetUpInTheOrderThatIsAskedFor) {
    const CardWindowMacOS another{CardWindow::settings(kFrame), clock_.clock()};
    EXPECT_FALSE(panel_.canBecomeKeyWindow);
    EXPECT_FALSE(panel_.canBecomeMainWindow);
    EXPECT_EQ(another.number(), 42);
}

TEST_F(CardWindowMacOSTest, PassesOnWhatItIsToldAndAsked) {
    window_->orderFrontRegardless();
    window_->setFrame({1, 2, 504, 326}, {});
    macrt::setAnswer(panel_, "visible", YES);
    macrt::setAnswer(panel_, "occlusionState", 8194);
    EXPECT_TRUE(window_->isVisible());
    EXPECT_EQ(window_->occlusionState(), 8194u);
    window_->orderOut();
    window_->close();
}

TEST_F(CardWindowMacOSTest, TellsOfAPressBeforeItIsHandledAndPassesItOn) {
    window_->setMouseDownObserver([](Point place) { step("pressed at " + describe(place)); });
    [panel_ sendEvent:macrt::makeEvent(NSEventTypeLeftMouseDown, {60, 70})];
    [panel_ sendEvent:macrt::makeEvent(NSEventTypeLeftMouseUp, {61, 70})];
}

TEST_F(CardWindowMacOSTest, FadesAndTellsWhenAFadeHasEnded) {
    int ended = 0;
    window_->animateAlpha(1, std::chrono::milliseconds{350}, [&] { ++ended; });
    EXPECT_EQ(ended, 0);
    macrt::finishAnimations();
    EXPECT_EQ(ended, 1);
    step("a group of no duration takes the place of a fade that still runs");
    window_->setAlpha(0);
    step("a fade may outlive its window");
    window_->animateAlpha(0.5, std::chrono::seconds{1}, [&] { ++ended; });
    window_ = nullptr;
    macrt::finishAnimations();
    EXPECT_EQ(ended, 2);
}

TEST_F(CardWindowMacOSTest, LeavesTheShadowsMarginToTheLockScreen) {
    takeStage();
    movePointer(30, 100);
    window_->setIgnoresMouseEvents(false);
    EXPECT_TRUE(panel_.ignoresMouseEvents);
    // No event tells of the way back onto the card.
    movePointer(60, 100);
    clock_.advance(std::chrono::milliseconds{49});
    EXPECT_TRUE(panel_.ignoresMouseEvents);
    clock_.advance(std::chrono::milliseconds{1});
    EXPECT_FALSE(panel_.ignoresMouseEvents);
    EXPECT_EQ(clock_.pendingTimers(), 0u);
    // From there on the window hears of every movement itself.
    movePointer(460, 100);
    [root() mouseMoved:macrt::makeEvent(NSEventTypeLeftMouseUp, {})];
    EXPECT_TRUE(panel_.ignoresMouseEvents);
    movePointer(700, 100);
    clock_.advance(std::chrono::milliseconds{50});
    EXPECT_FALSE(panel_.ignoresMouseEvents);
    EXPECT_EQ(clock_.pendingTimers(), 0u);
}

TEST_F(CardWindowMacOSTest, KeepsADragThatLeavesTheCard) {
    takeStage();
    movePointer(60, 100);
    window_->setIgnoresMouseEvents(false);
    [panel_ sendEvent:macrt::makeEvent(NSEventTypeLeftMouseDown, {60, 100})];
    movePointer(10, 100);
    [root() mouseExited:macrt::makeEvent(NSEventTypeLeftMouseUp, {})];
    EXPECT_FALSE(panel_.ignoresMouseEvents);
    [panel_ sendEvent:macrt::makeEvent(NSEventTypeLeftMouseUp, {10, 100})];
    EXPECT_TRUE(panel_.ignoresMouseEvents);
    step("a press that the system cancels ends as well");
    movePointer(60, 100);
    clock_.advance(std::chrono::milliseconds{50});
    [panel_ sendEvent:macrt::makeEvent(NSEventTypeLeftMouseDown, {60, 100})];
    movePointer(10, 100);
    [panel_ sendEvent:macrt::makeEvent(NSEventTypeMouseCancelled, {10, 100})];
    EXPECT_TRUE(panel_.ignoresMouseEvents);
    window_->setIgnoresMouseEvents(true);
    EXPECT_TRUE(panel_.ignoresMouseEvents);
    EXPECT_EQ(clock_.pendingTimers(), 0u);
}

TEST_F(CardWindowMacOSTest, ItsPanelLastsUntilTheEventHasEnded) {
    @autoreleasepool {
        window_ = nullptr;
        EXPECT_NE(macrt::livingObjects().find("CardPanel"), std::string::npos);
    }
    EXPECT_EQ(macrt::livingObjects().find("CardPanel"), std::string::npos);
}

TEST_F(CardWindowMacOSTest, TakesItsContentAndLetsGoOfIt) {
    std::weak_ptr<CardStageMacOS> weak;
    @autoreleasepool {
        auto stage = std::make_shared<CardStageMacOS>(GlassCardView::style());
        weak = stage;
        macrt::takeCalls();
        window_->setContent(stage);
        EXPECT_EQ(panel_.contentView, stage->root());
        stage = nullptr;
        EXPECT_FALSE(weak.expired());
        window_->setContent(nullptr);
    }
    EXPECT_EQ(panel_.contentView, nil);
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(macrt::livingObjects().find("View"), std::string::npos);
}

}  // namespace
}  // namespace quorvane
