#pragma once

#include <Foundation/Foundation.h>

typedef NSString* NSAccessibilityRole;
typedef NSString* NSAccessibilityNotificationName;

extern "C" {
extern NSAccessibilityRole const NSAccessibilityButtonRole;
extern NSAccessibilityRole const NSAccessibilityGroupRole;
extern NSAccessibilityRole const NSAccessibilityImageRole;
extern NSAccessibilityRole const NSAccessibilityProgressIndicatorRole;  // from memory
extern NSAccessibilityRole const NSAccessibilitySliderRole;
extern NSAccessibilityRole const NSAccessibilityStaticTextRole;
extern NSAccessibilityNotificationName const NSAccessibilityLayoutChangedNotification;
extern NSAccessibilityNotificationName const
    NSAccessibilityTitleChangedNotification;  // from memory
extern NSAccessibilityNotificationName const NSAccessibilityValueChangedNotification;
}
