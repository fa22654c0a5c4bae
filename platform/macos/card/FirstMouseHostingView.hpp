// View that draws a card's scene and reports its input events. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "drawing/CardWindows.hpp"

// Accepts the first click, because its window is never key. Uses the scene's coordinates.
@interface FirstMouseHostingView : NSView
@property(nonatomic) quorvane::StageEvents events;
// Redraws only the areas that changed.
- (void)showScene:(const quorvane::Scene&)scene;
// Returns NO when the view has no events.
- (BOOL)perform:(quorvane::AccessibilityAction)action on:(const quorvane::SceneControl&)control;
- (void)setNumber:(double)number of:(const quorvane::SceneControl&)control;
@end
