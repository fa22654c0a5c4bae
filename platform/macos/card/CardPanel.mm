#include "platform/macos/card/CardPanel.hpp"

#include "platform/macos/foundation/ReferenceCounting.hpp"

@implementation CardPanel

- (BOOL)canBecomeKeyWindow {
    return NO;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

- (void)sendEvent:(NSEvent*)event {
    // The handlers may close and release this window. The system still uses it and its views.
    __attribute__((objc_precise_lifetime)) CardPanel* const window = self;
    __attribute__((objc_precise_lifetime)) NSView* const content = window.contentView;
    const NSEventType type = event.type;
    if (type == NSEventTypeLeftMouseDown || type == NSEventTypeLeftMouseUp ||
        type == NSEventTypeMouseCancelled)
        _onPrimaryButton(type, event.locationInWindow);
    [super sendEvent:event];
}

@end
