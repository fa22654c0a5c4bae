#include "platform/macos/card/FirstMouseHostingView.hpp"

#include <algorithm>
#include <map>

#include "drawing/AccessibleScene.hpp"
#include "drawing/SceneChanges.hpp"
#include "platform/macos/card/CardControlElement.hpp"
#include "platform/macos/card/CoreGraphicsCanvas.hpp"
#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

NSAccessibilityNotificationName noticeOf(AccessibilityChange::Kind kind) {
    switch (kind) {
        case AccessibilityChange::Kind::label: return NSAccessibilityTitleChangedNotification;
        case AccessibilityChange::Kind::number: return NSAccessibilityValueChangedNotification;
        default: return NSAccessibilityLayoutChangedNotification;
    }
}

}  // namespace
}  // namespace quorvane

@implementation FirstMouseHostingView {
    quorvane::Scene scene_;
    quorvane::CoreGraphicsCanvas canvas_;
    std::map<quorvane::SceneControl::ID, CardControlElement*> elements_;
}

- (BOOL)isFlipped {
    return YES;
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    return YES;
}

- (BOOL)mouseDownCanMoveWindow {
    return NO;
}

- (void)showScene:(const quorvane::Scene&)scene {
    for (const quorvane::Rect& area : quorvane::changedAreas(scene_, scene))
        [self setNeedsDisplayInRect:cgRect(area)];
    const auto changes = quorvane::accessibilityChanges(scene_.controls, scene.controls);
    // Most scenes, many in a second while a text scrolls, have the labels and controls of the last.
    const bool isRenamed = scene.label != scene_.label;
    const bool hasOtherControls = scene.controls != scene_.controls;
    scene_ = scene;
    if (isRenamed) self.accessibilityLabel = quorvane::stringFrom(scene.label);
    if (hasOtherControls) [self updateControlElements];
    for (const quorvane::AccessibilityChange& change : changes) {
        const auto element = elements_.find(change.control);
        // For an added or removed control, the subject is the whole card.
        const id subject = element == elements_.end() ? self : element->second;
        NSAccessibilityPostNotification(subject, quorvane::noticeOf(change.kind));
    }
}

- (void)drawRect:(NSRect)dirtyRect {
    canvas_.draw(scene_);
}

// Pointer

- (void)report:(quorvane::PointerEvent::Kind)kind of:(NSEvent*)event {
    const NSPoint place = [self convertPoint:event.locationInWindow fromView:nil];
    // A copy, because the handler may replace the events.
    const auto pointer = _events.pointer;
    if (pointer) pointer({kind, {place.x, place.y}});
}

- (void)mouseDown:(NSEvent*)event {
    [self report:quorvane::PointerEvent::Kind::down of:event];
}

- (void)mouseDragged:(NSEvent*)event {
    [self report:quorvane::PointerEvent::Kind::dragged of:event];
}

- (void)mouseUp:(NSEvent*)event {
    [self report:quorvane::PointerEvent::Kind::up of:event];
}

- (void)mouseCancelled:(NSEvent*)event {
    [self report:quorvane::PointerEvent::Kind::cancelled of:event];
}

// Assistive technology

- (BOOL)isAccessibilityElement {
    return YES;
}

- (NSAccessibilityRole)accessibilityRole {
    return NSAccessibilityGroupRole;
}

- (NSArray*)accessibilityChildren {
    NSMutableArray* const children = [NSMutableArray arrayWithCapacity:scene_.controls.size()];
    for (const quorvane::SceneControl& control : scene_.controls)
        [children addObject:elements_.at(control.id)];
    return children;
}

// In screen coordinates.
- (id)accessibilityHitTest:(NSPoint)point {
    const NSPoint place = [self convertPoint:[self.window convertPointFromScreen:point]
                                    fromView:nil];
    const quorvane::SceneControl* const control =
        quorvane::accessibleControlAt(scene_.controls, {place.x, place.y});
    return control == nullptr ? self : elements_.at(control->id);
}

// Keeps a control's element while the control exists, because assistive technology holds on to it.
- (void)updateControlElements {
    std::erase_if(elements_, [&](const auto& each) {
        return std::ranges::find(scene_.controls, each.first, &quorvane::SceneControl::id) ==
               scene_.controls.end();
    });
    for (const quorvane::SceneControl& control : scene_.controls) {
        CardControlElement* __strong& element = elements_[control.id];
        if (element == nil) element = [[CardControlElement alloc] initInView:self];
        [element setControl:control];
    }
}

- (BOOL)perform:(quorvane::AccessibilityAction)action on:(const quorvane::SceneControl&)control {
    const auto offered = quorvane::accessibilityActions(control.role);
    if (std::ranges::find(offered, action) == offered.end()) return NO;
    const auto perform = _events.accessibility;
    if (perform) perform(control.id, action);
    return YES;
}

- (void)setNumber:(double)number of:(const quorvane::SceneControl&)control {
    const auto setNumber = _events.accessibilityNumber;
    if (setNumber) setNumber(control.id, number);
}

@end
