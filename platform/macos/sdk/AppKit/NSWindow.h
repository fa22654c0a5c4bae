#pragma once

#include "NSGraphics.h"
#include "NSResponder.h"

@class NSAppearance;
@class NSColor;
@class NSView;

typedef NSUInteger NSWindowStyleMask;
typedef NSUInteger NSWindowCollectionBehavior;
typedef NSUInteger NSWindowOcclusionState;
typedef NSInteger NSWindowLevel;
enum NSWindowAnimationBehavior : NSInteger { NSWindowAnimationBehaviorNone = 2 };

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag;
@property(readonly) NSRect frame;
@property(readonly) NSInteger windowNumber;
@property(getter=isVisible, readonly) BOOL visible;
@property(readonly) NSWindowOcclusionState occlusionState;
@property(readonly) BOOL canBecomeKeyWindow;
@property(readonly) BOOL canBecomeMainWindow;
@property(getter=isOpaque) BOOL opaque;
@property(copy) NSColor* backgroundColor;
@property BOOL hasShadow;
@property(strong) NSAppearance* appearance;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property BOOL hidesOnDeactivate;
@property BOOL canHide;
@property NSWindowAnimationBehavior animationBehavior;
@property(readonly) CGFloat backingScaleFactor;
@property BOOL acceptsMouseMovedEvents;
@property CGFloat alphaValue;
@property BOOL ignoresMouseEvents;
@property(strong) NSView* contentView;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (NSPoint)convertPointFromScreen:(NSPoint)point;
- (void)orderFrontRegardless;
- (void)orderOut:(id)sender;
- (void)close;
- (void)sendEvent:(NSEvent*)event;
- (instancetype)animator;
@end
