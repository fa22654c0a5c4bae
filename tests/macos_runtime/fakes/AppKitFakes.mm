// Windows and views, as far as they keep what they are told or answer otherwise than with nothing.
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"

#import <QuartzCore/QuartzCore.h>

#include <utility>

namespace {
std::function<NSPoint(NSPoint)> conversion;
std::vector<void (^)(void)> endings;
NSInteger lastNumber = 40;
NSGraphicsContext* current;
const macrt::AtReset reset{[] {
    conversion = nullptr;
    endings.clear();
    lastNumber = 40;
    current = nil;
}};
}  // namespace

@interface NSWindow () <Recorded>
@end
@implementation NSWindow
@dynamic backingScaleFactor, visible, occlusionState;
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag {
    self = [super init];
    _frame = contentRect;
    _windowNumber = ++lastNumber;
    return self;
}
- (BOOL)canBecomeKeyWindow {
    return YES;
}
- (BOOL)canBecomeMainWindow {
    return YES;
}
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag {
    _frame = frameRect;
}
- (NSPoint)convertPointFromScreen:(NSPoint)point {
    return {point.x - 1000, point.y - 2000};
}
- (instancetype)animator {
    return self;
}
@end

@interface NSLayoutAnchor () {
@public
    std::string place_;
}
@end
@implementation NSLayoutAnchor
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor*)anchor {
    const auto text = place_ + " = " + anchor->place_;
    return (__bridge_transfer NSLayoutConstraint*)macrt::makeObject(text);
}
@end

namespace {
template <typename Anchor>
Anchor* anchorOf(NSView* view, const char* edge) {
    Anchor* const anchor = [Anchor new];
    anchor->place_ = macrt::describe(view) + "." + edge;
    return anchor;
}
}  // namespace

@interface NSView () <Recorded>
@end
@implementation NSView {
@package
    NSMutableArray* subviews_;
}
@dynamic window;
@synthesize accessibilityChildren = accessibilityChildren_;
@synthesize accessibilityElement = accessibilityElement_;
@synthesize accessibilityEnabled = accessibilityEnabled_;
@synthesize accessibilityFrame = accessibilityFrame_;
@synthesize accessibilityLabel = accessibilityLabel_;
@synthesize accessibilityMaxValue = accessibilityMaxValue_;
@synthesize accessibilityMinValue = accessibilityMinValue_;
@synthesize accessibilityParent = accessibilityParent_;
@synthesize accessibilityRole = accessibilityRole_;
@synthesize accessibilityValue = accessibilityValue_;
@synthesize accessibilityValueDescription = accessibilityValueDescription_;
- (instancetype)initWithFrame:(NSRect)frameRect {
    self = [super init];
    _frame = frameRect;
    _bounds = {{0, 0}, frameRect.size};
    _layer = [CALayer new];
    subviews_ = [NSMutableArray new];
    return self;
}
- (BOOL)mouseDownCanMoveWindow {
    return YES;
}
- (NSLayoutXAxisAnchor*)leadingAnchor {
    return anchorOf<NSLayoutXAxisAnchor>(self, "leading");
}
- (NSLayoutXAxisAnchor*)trailingAnchor {
    return anchorOf<NSLayoutXAxisAnchor>(self, "trailing");
}
- (NSLayoutYAxisAnchor*)topAnchor {
    return anchorOf<NSLayoutYAxisAnchor>(self, "top");
}
- (NSLayoutYAxisAnchor*)bottomAnchor {
    return anchorOf<NSLayoutYAxisAnchor>(self, "bottom");
}
- (void)addSubview:(NSView*)view {
    [subviews_ addObject:view];
}
- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view {
    return conversion ? conversion(point) : point;
}
@end

@interface NSAnimationContext () <Recorded>
@end
@implementation NSAnimationContext
+ (void)runAnimationGroup:(void (^)(NSAnimationContext* context))changes
        completionHandler:(void (^)(void))completionHandler {
    changes([NSAnimationContext new]);
    if (completionHandler != nil) endings.push_back(completionHandler);
}
@end

@implementation NSGraphicsContext
@dynamic CGContext;
+ (NSGraphicsContext*)currentContext {
    return current;
}
+ (void)setCurrentContext:(NSGraphicsContext*)context {
    current = context;
}
@end

namespace macrt {

NSEvent* makeEvent(NSEventType type, NSPoint location) {
    NSEvent* const event = [NSEvent new];
    setAnswer(event, "type", type);
    setAnswer(event, "locationInWindow", location);
    return event;
}

void setConversion(std::function<NSPoint(NSPoint)> fromWindow) {
    conversion = std::move(fromWindow);
}

void finishAnimations() {
    for (auto now = std::exchange(endings, {}); const auto& ending : now) ending();
}

void setScreens(const std::vector<FakeScreen>& all) {
    NSMutableArray* const screens = [NSMutableArray new];
    for (const FakeScreen& each : all) {
        NSScreen* const screen = [NSScreen new];
        setAnswer(screen, "frame", each.frame);
        setAnswer(screen, "backingScaleFactor", each.scale);
        [screens addObject:screen];
    }
    setAnswer("NSScreen.screens", screens);
}

NSArray<NSView*>* subviewsOf(NSView* view) { return view->subviews_; }

void drawing(const std::function<void()>& action) {
    const id target = (__bridge_transfer id)makeObject("context");
    current = [NSGraphicsContext new];
    setAnswer(current, "CGContext", (__bridge CGContextRef)target);
    action();
    current = nil;
}

}  // namespace macrt
