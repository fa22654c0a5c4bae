#pragma once

#include "NSAccessibilityConstants.h"

@protocol NSAccessibility <NSObject>
@property(getter=isAccessibilityElement) BOOL accessibilityElement;
@property(copy) NSAccessibilityRole accessibilityRole;
@property(copy) NSString* accessibilityLabel;
@property(strong) id accessibilityValue;
@property(strong) id accessibilityMinValue;
@property(strong) id accessibilityMaxValue;
@property(copy) NSArray* accessibilityChildren;
@property(weak) id accessibilityParent;     // from memory
@property NSRect accessibilityFrame;        // from memory
- (id)accessibilityHitTest:(NSPoint)point;  // from memory
- (BOOL)accessibilityPerformPress;
- (BOOL)accessibilityPerformIncrement;
- (BOOL)accessibilityPerformDecrement;
@end
