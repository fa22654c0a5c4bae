// Our own declarations against the types that the system documents. A wrong width would put a value
// into the wrong register and go unnoticed everywhere else.
#include "tests/macos_runtime/MacTest.hpp"

namespace macrt {
namespace {

TEST(DeclarationsTest, HaveTheSystemsTypes) {
    const struct {
        const char* className;
        const char* selector;
        const char* types;
    } rows[] = {
        {"CALayer", "setShadowOpacity:", "v@:f"},
        {"CALayer", "setShadowOffset:", "v@:{CGSize=dd}"},
        {"CALayer", "setShadowRadius:", "v@:d"},
        {"CASpringAnimation", "initWithPerceptualDuration:bounce:", "@@:dd"},
        {"CASpringAnimation", "settlingDuration", "d@:"},
        {"NSWindow", "level", "q@:"},
        {"NSWindow", "collectionBehavior", "Q@:"},
        {"NSWindow", "occlusionState", "Q@:"},
        {"NSWindow", "windowNumber", "q@:"},
        {"NSWindow", "setAlphaValue:", "v@:d"},
        {"NSWindow", "setFrame:display:", "v@:{CGRect={CGPoint=dd}{CGSize=dd}}B"},
        {"NSWindow",
         "initWithContentRect:styleMask:backing:defer:", "@@:{CGRect={CGPoint=dd}{CGSize=dd}}QQB"},
        {"NSEvent", "type", "Q@:"},
        {"NSView", "setAutoresizingMask:", "v@:Q"},
        {"NSGlassEffectView", "setStyle:", "v@:q"},
        {"NSAnimationContext", "+runAnimationGroup:completionHandler:", "v@:@?@?"},
        {"NSAnimationContext", "setDuration:", "v@:d"},
        {"NSFont", "+systemFontOfSize:weight:", "@@:dd"},
        {"NSImage", "drawInRect:fromRect:operation:fraction:respectFlipped:hints:",
         "v@:{CGRect={CGPoint=dd}{CGSize=dd}}{CGRect={CGPoint=dd}{CGSize=dd}}QdB@"},
        {"NSApplication", "setActivationPolicy:", "B@:q"},
        {"NSProcessInfo", "processIdentifier", "i@:"},
        {"NSProcessInfo", "operatingSystemVersion", "{?=qqq}@:"},
        {"NSProcessInfo", "beginActivityWithOptions:reason:", "@@:Q@"},
        {"NSRunningApplication", "processIdentifier", "i@:"},
        {"NSTask", "terminationStatus", "i@:"},
        {"SMAppService", "status", "q@:"},
        {"SMAppService", "registerAndReturnError:", "B@:^@"},
        {"NSScreen", "backingScaleFactor", "d@:"},
        {"NSDistributedNotificationCenter",
         "addObserver:selector:name:object:suspensionBehavior:", "v@:@:@@Q"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(typesOf(row.className, row.selector), row.types) << row.selector;
}

}  // namespace
}  // namespace macrt
