// What tests may do to windows, views and what lies around them.
#pragma once

#import <AppKit/AppKit.h>

#include "tests/macos_runtime/fakes/Fakes.hpp"

namespace macrt {

NSEvent* makeEvent(NSEventType type, NSPoint location);
void setMouseLocation(NSPoint location);
// What a window's point is in every view.
void setConversion(std::function<NSPoint(NSPoint)> fromWindow);

// Ends the animation groups that were run, the oldest first.
void finishAnimations();

struct FakeScreen {
    NSRect frame;
    double scale;
};
void setScreens(const std::vector<FakeScreen>& screens);
void setReducesMotion(bool reduces);

void putInWindow(NSView* view, NSWindow* window);
NSArray<NSView*>* subviewsOf(NSView* view);
NSArray<NSTrackingArea*>* trackingAreasOf(NSView* view);
void setWindowState(NSWindow* window, BOOL isVisible, NSWindowOcclusionState occlusion);

// The context that is current while the action runs; what is drawn on it is noted.
void drawing(const std::function<void()>& action);

}  // namespace macrt
