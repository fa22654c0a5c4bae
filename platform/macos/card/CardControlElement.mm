#include "platform/macos/card/CardControlElement.hpp"

#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/card/FirstMouseHostingView.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

using quorvane::AccessibilityAction;
using quorvane::SceneControl;

// Texts and pictures offer no action.
@interface CardControlElement ()
- (const SceneControl&)control;
- (FirstMouseHostingView*)view;
- (instancetype)initWithRole:(NSAccessibilityRole)role inView:(FirstMouseHostingView*)view;
@end

@interface CardButtonElement : CardControlElement
@end

@interface CardProgressElement : CardControlElement
@end

@interface CardSliderElement : CardProgressElement
@end

@implementation CardControlElement {
    SceneControl control_;
    __weak FirstMouseHostingView* view_;
}

+ (CardControlElement*)elementOf:(SceneControl::Role)role inView:(FirstMouseHostingView*)view {
    switch (role) {
        case SceneControl::Role::button:
            return [[CardButtonElement alloc] initWithRole:NSAccessibilityButtonRole inView:view];
        case SceneControl::Role::slider:
            return [[CardSliderElement alloc] initWithRole:NSAccessibilitySliderRole inView:view];
        case SceneControl::Role::progress:
            return [[CardProgressElement alloc] initWithRole:NSAccessibilityProgressIndicatorRole
                                                      inView:view];
        case SceneControl::Role::image:
            return [[CardControlElement alloc] initWithRole:NSAccessibilityImageRole inView:view];
        case SceneControl::Role::text: break;
    }
    return [[CardControlElement alloc] initWithRole:NSAccessibilityStaticTextRole inView:view];
}

- (instancetype)initWithRole:(NSAccessibilityRole)role inView:(FirstMouseHostingView*)view {
    self = [super init];
    if (self == nil) return nil;
    view_ = view;
    self.accessibilityElement = YES;
    self.accessibilityEnabled = YES;
    self.accessibilityParent = view;
    self.accessibilityRole = role;
    return self;
}

- (const SceneControl&)control {
    return control_;
}

- (FirstMouseHostingView*)view {
    return view_;
}

- (void)setControl:(const SceneControl&)control {
    const bool isRenamed = control.label != control_.label;
    control_ = control;
    if (isRenamed) self.accessibilityLabel = quorvane::stringFrom(control.label);
}

- (id)accessibilityValue {
    return control_.value.empty() ? nil : quorvane::stringFrom(control_.value);
}

// In screen coordinates, at the window's current position.
- (NSRect)accessibilityFrame {
    return NSAccessibilityFrameInView(view_, quorvane::cgRect(control_.frame));
}

@end

@implementation CardButtonElement

- (BOOL)accessibilityPerformPress {
    return [self.view perform:AccessibilityAction::press on:self.control];
}

@end

@implementation CardProgressElement

- (id)accessibilityValue {
    return @(self.control.number);
}

- (NSString*)accessibilityValueDescription {
    return quorvane::stringFrom(self.control.value);
}

- (id)accessibilityMinValue {
    return @(self.control.minimum);
}

- (id)accessibilityMaxValue {
    return @(self.control.maximum);
}

@end

@implementation CardSliderElement

- (void)setAccessibilityValue:(id)value {
    [self.view setNumber:((NSNumber*)value).doubleValue of:self.control];
}

- (BOOL)accessibilityPerformIncrement {
    return [self.view perform:AccessibilityAction::increment on:self.control];
}

- (BOOL)accessibilityPerformDecrement {
    return [self.view perform:AccessibilityAction::decrement on:self.control];
}

@end
