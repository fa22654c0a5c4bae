#pragma once

#include "NSAccessibilityConstants.h"

@protocol NSAccessibility <NSObject>
@property(getter=isAccessibilityElement) BOOL accessibilityElement;
@property(getter=isAccessibilityEnabled) BOOL accessibilityEnabled;
@property(copy) NSAccessibilityRole accessibilityRole;
@property(copy) NSString* accessibilityLabel;
@property(strong) id accessibilityValue;
@property(copy) NSString* accessibilityValueDescription;
@property(strong) id accessibilityMinValue;
@property(strong) id accessibilityMaxValue;
@property(copy) NSArray* accessibilityChildren;
@property(weak) id accessibilityParent;
@property NSRect accessibilityFrame;
- (id)accessibilityHitTest:(NSPoint)point;
- (BOOL)accessibilityPerformPress;
- (BOOL)accessibilityPerformIncrement;
- (BOOL)accessibilityPerformDecrement;
@end
