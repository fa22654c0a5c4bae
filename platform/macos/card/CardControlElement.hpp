// Accessibility element of one card control. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "drawing/CardWindows.hpp"

@class FirstMouseHostingView;

// Owned by the view that draws the control. Requests go to that view's events. The system offers
// every action that a class implements, so each role has the class that implements its own.
@interface CardControlElement : NSAccessibilityElement
+ (CardControlElement*)elementOf:(quorvane::SceneControl::Role)role
                          inView:(FirstMouseHostingView*)view;
- (void)setControl:(const quorvane::SceneControl&)control;
@end
