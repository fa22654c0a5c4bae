#pragma once

#include "NSAccessibilityProtocols.h"
#include "NSLayoutAnchor.h"
#include "NSResponder.h"

@class CALayer;
@class NSTrackingArea;
@class NSWindow;

typedef NSUInteger NSAutoresizingMaskOptions;
enum : NSAutoresizingMaskOptions { NSViewWidthSizable = 2, NSViewHeightSizable = 16 };

@interface NSView : NSResponder <NSAccessibility>
- (instancetype)initWithFrame:(NSRect)frameRect;
@property NSRect frame;
@property NSRect bounds;
@property(getter=isFlipped, readonly) BOOL flipped;
@property(getter=isHidden) BOOL hidden;
@property NSAutoresizingMaskOptions autoresizingMask;
@property BOOL translatesAutoresizingMaskIntoConstraints;
@property BOOL wantsLayer;
@property(strong) CALayer* layer;
@property(readonly, strong) NSLayoutXAxisAnchor* leadingAnchor;
@property(readonly, strong) NSLayoutXAxisAnchor* trailingAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* topAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* bottomAnchor;
@property(readonly, unsafe_unretained) NSWindow* window;
@property(readonly) BOOL mouseDownCanMoveWindow;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view;
- (NSView*)hitTest:(NSPoint)point;
- (BOOL)acceptsFirstMouse:(NSEvent*)event;
- (void)addTrackingArea:(NSTrackingArea*)trackingArea;
- (void)setNeedsDisplayInRect:(NSRect)invalidRect;
- (void)drawRect:(NSRect)dirtyRect;
- (void)viewDidChangeBackingProperties;
@property BOOL needsLayout;
- (void)layout;
@end
