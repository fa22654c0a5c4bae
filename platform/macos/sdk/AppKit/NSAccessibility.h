#pragma once

#include "NSAccessibilityConstants.h"

@class NSView;

extern "C" {
void NSAccessibilityPostNotification(id element, NSAccessibilityNotificationName notification);
NSRect NSAccessibilityFrameInView(NSView* parentView, NSRect frame);
}
