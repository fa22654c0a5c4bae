// Windows, panels, animation groups, screens.
#include "tests/macos_runtime/fakes/AppKitFakes.hpp"

#include <utility>

namespace {
std::vector<void (^)(void)> endings;
NSArray<NSScreen*>* screens;
NSColor* clear;
NSInteger lastNumber = 40;
NSPoint mouse;
const macrt::AtReset reset{[] {
    endings.clear();
    screens = nil;
    clear = nil;
    lastNumber = 40;
    mouse = {-10000, -10000};
}};
}  // namespace

@interface NSWindow () <Recorded>
@property(readwrite) NSRect frame;
@property(readwrite) NSInteger windowNumber;
@property(getter=isVisible, readwrite) BOOL visible;
@property(readwrite) NSWindowOcclusionState occlusionState;
@end
@implementation NSWindow
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
- (void)orderFrontRegardless {
    _visible = YES;
}
- (void)orderOut:(id)sender {
    _visible = NO;
}
- (void)close {
    _visible = NO;
}
- (void)sendEvent:(NSEvent*)event {
}
- (instancetype)animator {
    return self;
}
@end

@interface NSPanel () <Recorded>
@end
@implementation NSPanel
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

@interface NSEvent ()
@property(readwrite) NSEventType type;
@property(readwrite) NSPoint locationInWindow;
@end
@implementation NSEvent
+ (NSPoint)mouseLocation {
    return mouse;
}
@end

@interface NSScreen ()
@property(readwrite) NSRect frame;
@property(readwrite) CGFloat backingScaleFactor;
@end
@implementation NSScreen
+ (NSArray<NSScreen*>*)screens {
    return screens;
}
@end

@implementation NSColor {
    std::string name_;
}
+ (NSColor*)clearColor {
    if (clear == nil) {
        clear = [NSColor new];
        clear->name_ = "clear";
    }
    return clear;
}
+ (NSColor*)colorWithSRGBRed:(CGFloat)red
                       green:(CGFloat)green
                        blue:(CGFloat)blue
                       alpha:(CGFloat)alpha {
    NSColor* const color = [NSColor new];
    char text[64];
    std::snprintf(text, sizeof text, "%g %g %g %g", red, green, blue, alpha);
    color->name_ = text;
    return color;
}
- (NSString*)description {
    return macrt::makeString("<" + name_ + ">");
}
@end

@implementation NSAppearance {
    NSAppearanceName name_;
}
+ (NSAppearance*)appearanceNamed:(NSAppearanceName)name {
    NSAppearance* const appearance = [NSAppearance new];
    appearance->name_ = name;
    return appearance;
}
- (NSString*)description {
    return name_;
}
@end

NSAppearanceName const NSAppearanceNameDarkAqua = @"NSAppearanceNameDarkAqua";

namespace macrt {

NSEvent* makeEvent(NSEventType type, NSPoint location) {
    NSEvent* const event = [NSEvent new];
    event.type = type;
    event.locationInWindow = location;
    return event;
}

void setMouseLocation(NSPoint location) { mouse = location; }

void finishAnimations() {
    for (auto now = std::exchange(endings, {}); const auto& ending : now) ending();
}

void setScreens(const std::vector<FakeScreen>& all) {
    NSMutableArray* const made = [NSMutableArray arrayWithCapacity:all.size()];
    for (const FakeScreen& each : all) {
        NSScreen* const screen = [NSScreen new];
        screen.frame = each.frame;
        screen.backingScaleFactor = each.scale;
        [made addObject:screen];
    }
    screens = made;
}

void setWindowState(NSWindow* window, BOOL isVisible, NSWindowOcclusionState occlusion) {
    window.visible = isVisible;
    window.occlusionState = occlusion;
}

}  // namespace macrt
