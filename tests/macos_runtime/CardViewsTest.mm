// The views of a card: how they are put together, how they move, what they report.
#include "Quorvane_Lock_Screen/GlassCardView.hpp"
#include "platform/macos/card/CardShadowView.hpp"
#include "platform/macos/card/CardStageMacOS.hpp"
#include "tests/macos_runtime/MacTest.hpp"
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"

namespace quorvane {
namespace {

class CardViewsTest : public macrt::MacTest {
protected:
    void SetUp() override {
        MacTest::SetUp();
        @autoreleasepool {
            stage_ = std::make_shared<CardStageMacOS>(GlassCardView::style());
        }
        NSView* const stage = macrt::subviewsOf(stage_->root()).firstObject;
        shadow_ = macrt::itemsOf(macrt::subviewsOf(stage))[0];
        NSGlassEffectView* const glass = macrt::itemsOf(macrt::subviewsOf(stage))[1];
        content_ = (FirstMouseHostingView*)glass.contentView;
        drainPool();
        macrt::takeCalls();
    }
    void TearDown() override {
        stage_ = nullptr;
        shadow_ = nil;
        content_ = nil;
        macrt::MacTest::TearDown();
    }

    std::shared_ptr<CardStageMacOS> stage_;
    NSView* shadow_ = nil;
    FirstMouseHostingView* content_ = nil;
};

Scene sceneWith(std::vector<SceneControl> controls) {
    return {.nodes = {ShapeNode{.frame = {10, 20, 30, 40}}}, .controls = std::move(controls)};
}

TEST_F(CardViewsTest, ArePutTogetherFromTheBack) {
    const CardStageMacOS another{GlassCardView::style()};
    EXPECT_TRUE(content_.isFlipped);
    EXPECT_TRUE([content_ acceptsFirstMouse:macrt::makeEvent(NSEventTypeLeftMouseDown, {})]);
    EXPECT_FALSE(content_.mouseDownCanMoveWindow);
}

TEST_F(CardViewsTest, TheShadowFallsAroundTheCardOnly) {
    EXPECT_EQ(([shadow_ hitTest:{100, 100}]), nil);
    NSWindow* const window = [NSWindow new];
    macrt::setAnswer(window, "backingScaleFactor", 2);
    macrt::setAnswer(shadow_, "window", window);
    [shadow_ viewDidChangeBackingProperties];
    [shadow_ layout];
}

TEST_F(CardViewsTest, SpringInFromALittleBelow) {
    macrt::setAnswer("CASpringAnimation.settlingDuration", 0.8125);
    stage_->setHidden(false);
    stage_->removeAnimations();
    stage_->springFrom({.scale = 0.94, .centre = {252, 163}, .offset = {5, 12}},
                       {.perceptualDuration = 0.5, .bounce = 0.05});
}

TEST_F(CardViewsTest, ReportThePointerInTheCardsCoordinates) {
    std::vector<std::pair<PointerEvent::Kind, Point>> seen;
    stage_->setEvents({.pointer =
                           [&](const PointerEvent& event) {
                               // What hears may take itself away.
                               stage_->setEvents({});
                               seen.emplace_back(event.kind, event.location);
                           },
                       .accessibility = nullptr});
    const StageEvents events = content_.events;
    macrt::setConversion([](NSPoint p) { return NSPoint{p.x - 52, 274 - p.y}; });
    const auto event = [](double x, double y) {
        return macrt::makeEvent(NSEventTypeLeftMouseDown, {x, y});
    };
    [content_ mouseDown:event(62, 264)];
    [content_ mouseDragged:event(70, 264)];  // nobody hears it
    content_.events = events;
    [content_ mouseDragged:event(72, 254)];
    content_.events = events;
    [content_ mouseUp:event(452, 52)];
    content_.events = events;
    [content_ mouseCancelled:event(52, 274)];
    using Kind = PointerEvent::Kind;
    EXPECT_EQ(seen, (std::vector<std::pair<Kind, Point>>{{Kind::down, {10, 10}},
                                                         {Kind::dragged, {20, 20}},
                                                         {Kind::up, {400, 222}},
                                                         {Kind::cancelled, {0, 0}}}));
}

TEST_F(CardViewsTest, DrawAnewOnlyWhatLooksDifferent) {
    Scene scene = sceneWith({});
    stage_->setScene(scene);
    stage_->setScene(scene);
    scene.nextChange = std::chrono::seconds{3};
    stage_->setScene(scene);
    step("another shape");
    scene.nodes.push_back(ShapeNode{.frame = {100, 0, 5, 5}, .fill = Color::white()});
    stage_->setScene(scene);
    macrt::drawing([&] { [content_ drawRect:{{0, 0}, {400, 222}}]; });
}

TEST_F(CardViewsTest, HaveAnElementForEveryControl) {
    using ID = SceneControl::ID;
    using Role = SceneControl::Role;
    std::vector<std::pair<ID, AccessibilityAction>> asked;
    double number = 0;
    stage_->setEvents(
        {.pointer = nullptr,
         .accessibility = [&](ID id,
                              AccessibilityAction action) { asked.emplace_back(id, action); },
         .accessibilityNumber =
             [&](ID id, double value) {
                 EXPECT_EQ(id, ID::volume);
                 number = value;
             }});
    const SceneControl next{
        .id = ID::next, .role = Role::button, .frame = {250, 110, 48, 48}, .label = "Next Track"};
    SceneControl volume{.id = ID::volume,
                        .role = Role::slider,
                        .frame = {40, 190, 300, 24},
                        .label = "Volume",
                        .number = 40,
                        .maximum = 100};
    const SceneControl title{.id = ID::title, .role = Role::text, .value = "Song"};
    @autoreleasepool {
        stage_->setScene(sceneWith({next, volume, title}));
        NSArray* const children = content_.accessibilityChildren;
        ASSERT_EQ(macrt::itemsOf(children).size(), 3u);
        NSAccessibilityElement* const button = macrt::itemsOf(children)[0];
        NSAccessibilityElement* const slider = macrt::itemsOf(children)[1];
        NSAccessibilityElement* const text = macrt::itemsOf(children)[2];
        EXPECT_TRUE(content_.isAccessibilityElement);
        EXPECT_EQ(content_.accessibilityRole, NSAccessibilityGroupRole);
        EXPECT_EQ(button.accessibilityRole, NSAccessibilityButtonRole);
        EXPECT_EQ(macrt::textOf(button.accessibilityLabel), "Next Track");
        EXPECT_EQ(button.accessibilityParent, content_);
        EXPECT_TRUE(button.isAccessibilityElement && button.isAccessibilityEnabled);
        // Wherever the system says it is.
        macrt::setAnswer("NSAccessibilityFrameInView", NSRect{{1250, 2110}, {48, 48}});
        EXPECT_EQ(button.accessibilityFrame.origin.x, 1250);
        NSWindow* const window = [NSWindow new];
        macrt::setAnswer(content_, "window", window);
        EXPECT_EQ(([content_ accessibilityHitTest:{1250, 2110}]), button);
        EXPECT_EQ(([content_ accessibilityHitTest:{1010, 2010}]), content_);
        EXPECT_TRUE([button accessibilityPerformPress]);
        EXPECT_FALSE([button accessibilityPerformIncrement]);
        EXPECT_EQ(macrt::describe(slider.accessibilityValue), "40");
        EXPECT_EQ(macrt::describe(slider.accessibilityMinValue), "0");
        EXPECT_EQ(macrt::describe(slider.accessibilityMaxValue), "100");
        EXPECT_TRUE([slider accessibilityPerformIncrement]);
        EXPECT_TRUE([slider accessibilityPerformDecrement]);
        EXPECT_FALSE([slider accessibilityPerformPress]);
        slider.accessibilityValue = @62.5;
        EXPECT_EQ(number, 62.5);
        EXPECT_EQ(macrt::describe(text.accessibilityValue), "@\"Song\"");
        step("the volume changes, the title goes");
        volume.number = 45;
        volume.value = "45 %";
        stage_->setScene(sceneWith({next, volume}));
        EXPECT_EQ(macrt::itemsOf(content_.accessibilityChildren)[1], slider);
    }
    using enum AccessibilityAction;
    EXPECT_EQ(asked, (std::vector<std::pair<ID, AccessibilityAction>>{
                         {ID::next, press}, {ID::volume, increment}, {ID::volume, decrement}}));
    // The element of what is gone is gone.
    EXPECT_NE(macrt::livingObjects().find("1 CardSliderElement"), std::string::npos);
    EXPECT_EQ(macrt::livingObjects().find("CardControlElement"), std::string::npos);
}

}  // namespace
}  // namespace quorvane
