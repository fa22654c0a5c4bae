// The content view of a card's window. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

@interface CardRootView : NSView
// Called when the pointer enters, moves in or leaves the window, while the window accepts mouse
// events.
@property(nonatomic) std::function<void()> onPointerMoved;
@end
