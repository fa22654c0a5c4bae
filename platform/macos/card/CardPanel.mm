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
    // The handlers may close and release this window. The system goes on using it and its views.
    __attribute__((objc_precise_lifetime)) CardPanel* const window = self;
    __attribute__((objc_precise_lifetime)) NSView* const content = window.contentView;
    const NSEventType type = event.type;
    if (type == NSEventTypeLeftMouseDown || type == NSEventTypeLeftMouseUp)
        _onPrimaryButton(type, event.locationInWindow);
    [super sendEvent:event];
}

@end
