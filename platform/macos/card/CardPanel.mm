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
    const NSEventType type = event.type;
    if (type == NSEventTypeLeftMouseDown || type == NSEventTypeLeftMouseUp ||
        type == NSEventTypeMouseCancelled)
        _onPrimaryButton(type, event.locationInWindow);
    [super sendEvent:event];
}

@end
