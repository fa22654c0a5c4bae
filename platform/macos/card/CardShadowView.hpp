// The shadow around a card. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include "drawing/CardWindows.hpp"

// Draws nothing where the card itself is: the glass stays clear. No click stays in it.
@interface CardShadowView : NSView
- (instancetype)initWithFrame:(NSRect)frame style:(const quorvane::CardStyle&)style;
@end
