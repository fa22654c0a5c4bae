// Views, what they are made of, and what they tell to assistive technology.
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"

#import <QuartzCore/QuartzCore.h>

namespace {
std::function<NSPoint(NSPoint)> conversion;
const macrt::AtReset reset{[] { conversion = nullptr; }};
}  // namespace

@interface NSResponder () <Recorded>
@end
@implementation NSResponder
- (void)mouseDown:(NSEvent*)event {
}
- (void)mouseUp:(NSEvent*)event {
}
- (void)mouseDragged:(NSEvent*)event {
}
- (void)mouseMoved:(NSEvent*)event {
}
- (void)mouseEntered:(NSEvent*)event {
}
- (void)mouseExited:(NSEvent*)event {
}
- (void)mouseCancelled:(NSEvent*)event {
}
@end

@interface NSLayoutConstraint () <Recorded>
@end
@implementation NSLayoutConstraint {
@package
    std::string text_;
}
+ (void)activateConstraints:(NSArray<NSLayoutConstraint*>*)constraints {
}
- (NSString*)description {
    return macrt::makeString(text_);
}
@end

@interface NSLayoutAnchor ()
@property(nonatomic) std::string name;
@end
@implementation NSLayoutAnchor
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor*)anchor {
    NSLayoutConstraint* const constraint = [NSLayoutConstraint new];
    constraint->text_ = self.name + " = " + anchor.name;
    return constraint;
}
@end
@implementation NSLayoutXAxisAnchor
@end
@implementation NSLayoutYAxisAnchor
@end

namespace {
template <typename Anchor>
Anchor* anchorOf(NSView* view, const char* edge) {
    Anchor* const anchor = [Anchor new];
    anchor.name = macrt::describe(view) + "." + edge;
    return anchor;
}
}  // namespace

@interface NSView () <Recorded>
@property(readwrite, unsafe_unretained) NSWindow* window;
@end
@implementation NSView {
@package
    NSMutableArray* subviews_;
    NSMutableArray* trackingAreas_;
    BOOL wantsLayer_;
}
@synthesize accessibilityChildren = accessibilityChildren_;
@synthesize accessibilityElement = accessibilityElement_;
@synthesize accessibilityFrame = accessibilityFrame_;
@synthesize accessibilityLabel = accessibilityLabel_;
@synthesize accessibilityMaxValue = accessibilityMaxValue_;
@synthesize accessibilityMinValue = accessibilityMinValue_;
@synthesize accessibilityParent = accessibilityParent_;
@synthesize accessibilityRole = accessibilityRole_;
@synthesize accessibilityValue = accessibilityValue_;
- (instancetype)initWithFrame:(NSRect)frameRect {
    self = [super init];
    _frame = frameRect;
    _bounds = {{0, 0}, frameRect.size};
    subviews_ = [NSMutableArray new];
    trackingAreas_ = [NSMutableArray new];
    return self;
}
- (void)setWantsLayer:(BOOL)wantsLayer {
    wantsLayer_ = wantsLayer;
    self.layer = [CALayer layer];
}
- (BOOL)wantsLayer {
    return wantsLayer_;
}
- (BOOL)isFlipped {
    return NO;
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
- (void)addTrackingArea:(NSTrackingArea*)trackingArea {
    [trackingAreas_ addObject:trackingArea];
}
- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view {
    return conversion ? conversion(point) : point;
}
- (NSView*)hitTest:(NSPoint)point {
    return self;
}
- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    return NO;
}
- (void)setNeedsDisplayInRect:(NSRect)invalidRect {
}
- (void)drawRect:(NSRect)dirtyRect {
}
- (void)layout {
}
- (id)accessibilityHitTest:(NSPoint)point {
    return nil;
}
- (BOOL)accessibilityPerformPress {
    return NO;
}
- (BOOL)accessibilityPerformIncrement {
    return NO;
}
- (BOOL)accessibilityPerformDecrement {
    return NO;
}
@end

@interface NSTrackingArea () <Recorded>
@end
@implementation NSTrackingArea {
    __weak id owner_;
}
- (instancetype)initWithRect:(NSRect)rect
                     options:(NSTrackingAreaOptions)options
                       owner:(id)owner
                    userInfo:(NSDictionary*)userInfo {
    owner_ = owner;
    return self;
}
@end

@interface NSGlassEffectView () <Recorded>
@end
@implementation NSGlassEffectView
@end

@implementation NSAccessibilityElement
@synthesize accessibilityChildren = accessibilityChildren_;
@synthesize accessibilityElement = accessibilityElement_;
@synthesize accessibilityFrame = accessibilityFrame_;
@synthesize accessibilityLabel = accessibilityLabel_;
@synthesize accessibilityMaxValue = accessibilityMaxValue_;
@synthesize accessibilityMinValue = accessibilityMinValue_;
@synthesize accessibilityParent = accessibilityParent_;
@synthesize accessibilityRole = accessibilityRole_;
@synthesize accessibilityValue = accessibilityValue_;
- (id)accessibilityHitTest:(NSPoint)point {
    return nil;
}
- (BOOL)accessibilityPerformPress {
    return NO;
}
- (BOOL)accessibilityPerformIncrement {
    return NO;
}
- (BOOL)accessibilityPerformDecrement {
    return NO;
}
@end

NSAccessibilityRole const NSAccessibilityButtonRole = @"AXButton";
NSAccessibilityRole const NSAccessibilityGroupRole = @"AXGroup";
NSAccessibilityRole const NSAccessibilityImageRole = @"AXImage";
NSAccessibilityRole const NSAccessibilityProgressIndicatorRole = @"AXProgressIndicator";
NSAccessibilityRole const NSAccessibilitySliderRole = @"AXSlider";
NSAccessibilityRole const NSAccessibilityStaticTextRole = @"AXStaticText";
NSAccessibilityNotificationName const NSAccessibilityLayoutChangedNotification = @"AXLayoutChanged";
NSAccessibilityNotificationName const NSAccessibilityTitleChangedNotification = @"AXTitleChanged";
NSAccessibilityNotificationName const NSAccessibilityValueChangedNotification = @"AXValueChanged";

void NSAccessibilityPostNotification(id element, NSAccessibilityNotificationName notification) {
    macrt::note("post " + macrt::textOf(notification) + " of " + macrt::describe(element));
}
NSRect NSAccessibilityFrameInView(NSView* parentView, NSRect frame) {
    macrt::note("frame in " + macrt::describe(parentView));
    return {{frame.origin.x + 1000, frame.origin.y + 2000}, frame.size};
}

namespace macrt {

void setConversion(std::function<NSPoint(NSPoint)> fromWindow) {
    conversion = std::move(fromWindow);
}
void putInWindow(NSView* view, NSWindow* window) { view.window = window; }
NSArray<NSView*>* subviewsOf(NSView* view) { return view->subviews_; }
NSArray<NSTrackingArea*>* trackingAreasOf(NSView* view) { return view->trackingAreas_; }

}  // namespace macrt
