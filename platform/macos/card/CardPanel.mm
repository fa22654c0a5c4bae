#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/card/CardPanel.hpp"

@implementation CardPanel

- (BOOL)canBecomeKeyWindow {
    return NO;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

- (void)sendEvent:(NSEvent*)event {
    const NSEventType type = event.type;
    if (type == NSEventTypeLeftMouseDown || type == NSEventTypeLeftMouseUp)
        _onPrimaryButton(type, event.locationInWindow);
    [super sendEvent:event];
}

@end
