// The shadow around a card. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include "drawing/CardWindows.hpp"

// Draws nothing inside the card's outline, so that the glass stays clear. Clicks pass through it.
@interface CardShadowView : NSView
- (instancetype)initWithFrame:(NSRect)frame style:(const quorvane::CardStyle&)style;
@end
