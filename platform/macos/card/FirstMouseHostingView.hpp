// The view that draws a card's scene and hears what is done to it. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "drawing/CardWindows.hpp"

// Takes the first click: its window is never key. Its coordinates are the scene's.
@interface FirstMouseHostingView : NSView
@property(nonatomic) quorvane::StageEvents events;
// Draws anew where it looks different.
- (void)showScene:(const quorvane::Scene&)scene;
// Whether the control can do it.
- (BOOL)perform:(quorvane::AccessibilityAction)action on:(const quorvane::SceneControl&)control;
- (void)setNumber:(double)number of:(const quorvane::SceneControl&)control;
@end
