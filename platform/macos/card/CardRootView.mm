#include "platform/macos/card/CardRootView.hpp"

#include "platform/macos/foundation/ReferenceCounting.hpp"

@implementation CardRootView

- (instancetype)initWithFrame:(NSRect)frame {
    self = [super initWithFrame:frame];
    if (self == nil) return nil;
    // "Always", because the application is never active and the window never key.
    const NSTrackingAreaOptions options = NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |
                                          NSTrackingActiveAlways | NSTrackingInVisibleRect;
    [self addTrackingArea:[[NSTrackingArea alloc] initWithRect:NSRect {}
                                                       options:options
                                                         owner:self
                                                      userInfo:nil]];
    return self;
}

- (void)mouseEntered:(NSEvent*)event {
    if (_onPointerMoved) _onPointerMoved();
}

- (void)mouseMoved:(NSEvent*)event {
    if (_onPointerMoved) _onPointerMoved();
}

- (void)mouseExited:(NSEvent*)event {
    if (_onPointerMoved) _onPointerMoved();
}

@end
