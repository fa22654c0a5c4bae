// The panel of a card. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

// Never key, never main: the keyboard stays with the lock screen.
@interface CardPanel : NSPanel
// Called for each event of the primary button, before it is handled, with its place in the window.
@property(nonatomic) std::function<void(NSEventType type, NSPoint location)> onPrimaryButton;
@end
