#include "platform/macos/card/CardWindowMacOS.hpp"

#include "platform/Seconds.hpp"
#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

constexpr NSWindowStyleMask kNonactivatingPanel = 128;
constexpr NSWindowLevel kScreenSaverLevel = 1000;
// Can join all spaces 1, stationary 16, ignores cycle 64, full-screen auxiliary 256.
constexpr NSWindowCollectionBehavior kCollectionBehavior = 337;
// Shorter than the time a hand takes from the card's edge to a button.
constexpr Duration kPointerInterval = std::chrono::milliseconds{50};

void runAnimation(double seconds, void (^changes)(void), void (^completion)(void)) {
    [NSAnimationContext
        runAnimationGroup:^(NSAnimationContext* context) {
          context.duration = seconds;
          changes();
        }
        completionHandler:completion];
}

}  // namespace

CardWindowMacOS::CardWindowMacOS(const Rect& frame, Clock clock) : clock_(std::move(clock)) {
    panel_ = [[CardWindow alloc] initWithContentRect:cgRect(frame)
                                           styleMask:kNonactivatingPanel
                                             backing:NSBackingStoreBuffered
                                               defer:NO];
    panel_.onPrimaryButton = [this](NSEventType type, NSPoint location) {
        primaryButton(type, {location.x, location.y});
    };
    panel_.becomesKeyOnlyIfNeeded = YES;
    panel_.opaque = NO;
    panel_.backgroundColor = NSColor.clearColor;
    panel_.hasShadow = NO;  // the card draws its own
    panel_.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    panel_.level = kScreenSaverLevel;
    panel_.collectionBehavior = kCollectionBehavior;
    panel_.releasedWhenClosed = NO;
    panel_.hidesOnDeactivate = NO;
    panel_.canHide = NO;
    panel_.animationBehavior = NSWindowAnimationBehaviorNone;
    panel_.acceptsMouseMovedEvents = YES;
    panel_.alphaValue = 0;
    applyMouse();
}

CardWindowMacOS::~CardWindowMacOS() {
    if (stage_) stage_->root().onPointerMoved = nullptr;
    // A panel whose event is being handled outlives this object.
    panel_.onPrimaryButton = [](NSEventType, NSPoint) {};
}

long CardWindowMacOS::number() const { return panel_.windowNumber; }

bool CardWindowMacOS::isVisible() const { return panel_.visible; }

unsigned long CardWindowMacOS::occlusionState() const { return panel_.occlusionState; }

void CardWindowMacOS::setIgnoresMouseEvents(bool ignores) {
    mouse_.setIgnored(ignores);
    followPointer();
}

void CardWindowMacOS::setContent(std::shared_ptr<CardStage> stage) {
    if (stage_) stage_->root().onPointerMoved = nullptr;
    stage_ = std::dynamic_pointer_cast<CardStageMacOS>(std::move(stage));
    panel_.contentView = stage_ ? stage_->root() : nil;
    if (!stage_) return;
    mouse_.setCard(stage_->style());
    stage_->root().onPointerMoved = [this] { followPointer(); };
}

void CardWindowMacOS::setFrame(const Rect& frame, const Screen&) {
    [panel_ setFrame:cgRect(frame) display:YES];
}

void CardWindowMacOS::orderFrontRegardless() { [panel_ orderFrontRegardless]; }

void CardWindowMacOS::orderOut() { [panel_ orderOut:nil]; }

void CardWindowMacOS::close() {
    nextLook_.reset();
    [panel_ close];
}

void CardWindowMacOS::setAlpha(double alpha) {
    // A zero-length animation, because only another animation ends a running fade.
    CardWindow* const panel = panel_;
    runAnimation(
        0,
        ^{
          [panel animator].alphaValue = alpha;
        },
        nil);
    panel_.alphaValue = alpha;
}

void CardWindowMacOS::animateAlpha(double alpha, Duration duration,
                                   std::function<void()> completion) {
    CardWindow* const panel = panel_;
    runAnimation(
        secondsOf(duration),
        ^{
          [panel animator].alphaValue = alpha;
        },
        ^{
          if (completion) completion();
        });
}

void CardWindowMacOS::setMouseDownObserver(std::function<void(Point)> observer) {
    mouseDownObserver_ = std::move(observer);
}

void CardWindowMacOS::primaryButton(NSEventType type, Point location) {
    mouse_.setPressed(type == NSEventTypeLeftMouseDown);
    if (type == NSEventTypeLeftMouseDown && mouseDownObserver_) mouseDownObserver_(location);
    followPointer();
}

// A window that once accepted mouse events gets clicks on its whole rectangle, even where it draws
// nothing. Clicks on the shadow's margin belong to the lock screen.
void CardWindowMacOS::followPointer() {
    const NSPoint pointer = NSEvent.mouseLocation;
    const NSRect frame = panel_.frame;
    mouse_.moveTo({pointer.x - frame.origin.x, pointer.y - frame.origin.y});
    applyMouse();
}

void CardWindowMacOS::applyMouse() {
    // Set only on change, because each setting goes to the window server and this runs at every
    // movement.
    if (panel_.ignoresMouseEvents != mouse_.ignoresMouse())
        panel_.ignoresMouseEvents = mouse_.ignoresMouse();
    nextLook_ = mouse_.mustAskForPointer()
                    ? clock_.after(kPointerInterval, [this] { followPointer(); })
                    : Timer{};
}

}  // namespace quorvane
