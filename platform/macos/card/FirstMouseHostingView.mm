#include "platform/macos/card/FirstMouseHostingView.hpp"

#include <algorithm>
#include <map>
#include <vector>

#include "drawing/AccessibleScene.hpp"
#include "drawing/SceneChanges.hpp"
#include "platform/macos/card/CardControlElement.hpp"
#include "platform/macos/card/CoreGraphicsCanvas.hpp"
#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/card/ScrollingTextView.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

@implementation FirstMouseHostingView {
    quorvane::Scene scene_;
    quorvane::CoreGraphicsCanvas canvas_;
    std::map<quorvane::SceneControl::ID, CardControlElement*> elements_;
    std::vector<ScrollingTextView*> movedTexts_;
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
    const bool isRenamed = scene.label != scene_.label;
    const quorvane::Scene before = std::exchange(scene_, scene);
    [self showMovedTexts];
    if (isRenamed) self.accessibilityLabel = quorvane::stringFrom(scene.label);
    // Most scenes have the controls of the last.
    if (before.controls == scene_.controls) return;
    [self updateControlElements];
    // A rehearsed card is in no window, so its changes are not reported.
    if (self.window != nil)
        [self reportChanges:quorvane::accessibilityChanges(before.controls, scene_.controls)];
}

- (void)reportChanges:(const std::vector<quorvane::AccessibilityChange>&)changes {
    using Kind = quorvane::AccessibilityChange::Kind;
    bool hasOtherLayout = false;
    for (const quorvane::AccessibilityChange& change : changes) {
        if (change.kind == Kind::disappeared || change.kind == Kind::appeared)
            hasOtherLayout = true;
        else
            NSAccessibilityPostNotification(elements_.at(change.control),
                                            change.kind == Kind::label
                                                ? NSAccessibilityTitleChangedNotification
                                                : NSAccessibilityValueChangedNotification);
    }
    // Once for all controls, because the subject is the card.
    if (hasOtherLayout)
        NSAccessibilityPostNotification(self, NSAccessibilityLayoutChangedNotification);
}

// A text keeps its view, and so its place in the cycle, while its node stays the same.
- (void)showMovedTexts {
    std::vector<ScrollingTextView*> views;
    for (const quorvane::SceneNode& node : scene_.nodes) {
        const auto* const text = std::get_if<quorvane::TextNode>(&node);
        if (text == nullptr || !text->scroll || !text->scroll->motion) continue;
        const auto known = std::ranges::find_if(
            movedTexts_, [&](ScrollingTextView* view) { return view.node == *text; });
        if (known != movedTexts_.end()) {
            views.push_back(*known);
            movedTexts_.erase(known);
            continue;
        }
        views.push_back([[ScrollingTextView alloc] initWithNode:*text
                                                  isRightToLeft:scene_.isRightToLeft]);
        [self addSubview:views.back()];
    }
    for (ScrollingTextView* view : movedTexts_) [view removeFromSuperview];
    movedTexts_ = std::move(views);
}

- (void)drawRect:(NSRect)dirtyRect {
    canvas_.draw(scene_);
}

// Its texts take no presses.
- (NSView*)hitTest:(NSPoint)point {
    return [super hitTest:point] == nil ? nil : self;
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
        if (element == nil) element = [CardControlElement elementOf:control.role inView:self];
        [element setControl:control];
    }
}

- (BOOL)perform:(quorvane::AccessibilityAction)action on:(const quorvane::SceneControl&)control {
    const auto perform = _events.accessibility;
    if (perform) perform(control.id, action);
    return perform != nullptr;
}

- (void)setNumber:(double)number of:(const quorvane::SceneControl&)control {
    const auto setNumber = _events.accessibilityNumber;
    if (setNumber) setNumber(control.id, number);
}

@end
