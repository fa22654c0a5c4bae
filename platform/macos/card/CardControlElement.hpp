// Accessibility element of one card control. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "drawing/CardWindows.hpp"

@class FirstMouseHostingView;

// Owned by the view that draws the control. Requests go to that view's events.
@interface CardControlElement : NSAccessibilityElement
- (instancetype)initInView:(FirstMouseHostingView*)view;
- (void)setControl:(const quorvane::SceneControl&)control;
@end
