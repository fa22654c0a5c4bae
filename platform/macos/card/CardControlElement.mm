#include "platform/macos/card/CardControlElement.hpp"

#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/card/FirstMouseHostingView.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

using quorvane::AccessibilityAction;
using quorvane::SceneControl;

namespace {

NSAccessibilityRole roleOf(SceneControl::Role role) {
    switch (role) {
        case SceneControl::Role::button: return NSAccessibilityButtonRole;
        case SceneControl::Role::slider: return NSAccessibilitySliderRole;
        case SceneControl::Role::text: return NSAccessibilityStaticTextRole;
        case SceneControl::Role::image: return NSAccessibilityImageRole;
        case SceneControl::Role::progress: return NSAccessibilityProgressIndicatorRole;
    }
    return NSAccessibilityStaticTextRole;
}

}  // namespace

@implementation CardControlElement {
    SceneControl control_;
    __weak FirstMouseHostingView* view_;
}

- (instancetype)initInView:(FirstMouseHostingView*)view {
    self = [super init];
    if (self == nil) return nil;
    view_ = view;
    self.accessibilityElement = YES;
    self.accessibilityParent = view;
    return self;
}

- (void)setControl:(const SceneControl&)control {
    control_ = control;
    self.accessibilityRole = roleOf(control.role);
    self.accessibilityLabel = quorvane::stringFrom(control.label);
}

- (id)accessibilityValue {
    switch (control_.role) {
        case SceneControl::Role::slider:
        case SceneControl::Role::progress: return @(control_.number);
        default: return quorvane::stringFrom(control_.value);
    }
}

- (void)setAccessibilityValue:(id)value {
    [view_ setNumber:((NSNumber*)value).doubleValue of:control_];
}

- (id)accessibilityMinValue {
    return @(control_.minimum);
}

- (id)accessibilityMaxValue {
    return @(control_.maximum);
}

// In screen coordinates, at the window's current position.
- (NSRect)accessibilityFrame {
    return NSAccessibilityFrameInView(view_, quorvane::cgRect(control_.frame));
}

- (BOOL)accessibilityPerformPress {
    return [view_ perform:AccessibilityAction::press on:control_];
}

- (BOOL)accessibilityPerformIncrement {
    return [view_ perform:AccessibilityAction::increment on:control_];
}

- (BOOL)accessibilityPerformDecrement {
    return [view_ perform:AccessibilityAction::decrement on:control_];
}

@end
