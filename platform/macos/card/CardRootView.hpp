// The content view of a card's window. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

@interface CardRootView : NSView
// Called when the pointer comes, moves or goes over the window, while the window takes the mouse.
@property(nonatomic) std::function<void()> onPointerMoved;
@end
