// What tests may do to windows, views and what lies around them.
#pragma once

#import <AppKit/AppKit.h>

#include "tests/macos_runtime/fakes/Answers.hpp"

namespace macrt {

NSEvent* makeEvent(NSEventType type, NSPoint location);
// What a window's point is in every view.
void setConversion(std::function<NSPoint(NSPoint)> fromWindow);

// Ends the animation groups that were run, the oldest first.
void finishAnimations();

struct FakeScreen {
    NSRect frame;
    double scale;
};
void setScreens(const std::vector<FakeScreen>& screens);

NSArray<NSView*>* subviewsOf(NSView* view);

// The context that is current while the action runs; what is drawn on it is noted.
void drawing(const std::function<void()>& action);

}  // namespace macrt
