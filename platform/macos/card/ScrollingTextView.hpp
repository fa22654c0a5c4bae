// View of one text that the system's render server moves. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include "drawing/Scene.hpp"

// The text and its copy are drawn once. Their motion is an animation that takes no work of this
// process and stops while the view is hidden.
@interface ScrollingTextView : NSView
// The node has a motion, which begins now.
- (instancetype)initWithNode:(const quorvane::TextNode&)node isRightToLeft:(BOOL)isRightToLeft;
- (const quorvane::TextNode&)node;
@end
