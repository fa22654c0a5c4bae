#include "platform/macos/card/CardWindow.hpp"

#include "platform/macos/foundation/ReferenceCounting.hpp"

@implementation CardWindow

- (BOOL)canBecomeKeyWindow {
    return NO;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

- (void)sendEvent:(NSEvent*)event {
    // The handlers may close and release this window. The system still uses it and its views.
    __attribute__((objc_precise_lifetime)) CardWindow* const window = self;
    __attribute__((objc_precise_lifetime)) NSView* const content = window.contentView;
    const NSEventType type = event.type;
    if (type == NSEventTypeLeftMouseDown || type == NSEventTypeLeftMouseUp ||
        type == NSEventTypeMouseCancelled)
        _onPrimaryButton(type, event.locationInWindow);
    [super sendEvent:event];
}

@end
