// The panel of a card. For Objective-C++ only.
#pragma once

#import <AppKit/AppKit.h>

#include <functional>

// Never key and never main, so that the keyboard stays with the lock screen.
@interface CardWindow : NSPanel
// Called before each event of the primary button is handled, with its location in the window.
@property(nonatomic) std::function<void(NSEventType type, NSPoint location)> onPrimaryButton;
@end
