#include "platform/macos/card/CardShadowView.hpp"

#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/foundation/CFHandle.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

using quorvane::CFHandle;

@implementation CardShadowView {
    quorvane::CardStyle style_;
    // A separate layer, because the system resets the shadow of a view's own layer.
    CALayer* caster_;
}

- (instancetype)initWithFrame:(NSRect)frame style:(const quorvane::CardStyle&)style {
    self = [super initWithFrame:frame];
    if (self == nil) return nil;
    style_ = style;
    self.wantsLayer = YES;
    caster_ = [CALayer layer];
    const CFHandle<CGColorRef> black = quorvane::makeColor(quorvane::Color::black());
    caster_.shadowColor = black.get();
    caster_.shadowOpacity = static_cast<float>(style.shadowOpacity);
    caster_.shadowRadius = style.shadowRadius;
    caster_.shadowOffset = {0, -style.shadowOffset};  // y grows upward here
    caster_.mask = [CAShapeLayer layer];
    [self.layer addSublayer:caster_];
    return self;
}

- (void)viewDidChangeBackingProperties {
    [super viewDidChangeBackingProperties];
    self.needsLayout = YES;
}

- (void)layout {
    [super layout];
    const CGRect whole = self.bounds;
    const quorvane::Rect card{style_.shadowMargin, style_.shadowMargin, style_.card.width,
                              style_.card.height};
    const double radius = quorvane::fittingRadius(card, style_.cornerRadius);
    const CFHandle<CGPathRef> shadow = quorvane::makeRoundedPath(card, radius);
    const CFHandle<CGMutablePathRef> around{CGPathCreateMutable()};
    CGPathAddRect(around.get(), nullptr, whole);
    CGPathAddRoundedRect(around.get(), nullptr, cgRect(card), radius, radius);
    auto* const mask = (CAShapeLayer*)caster_.mask;
    [CATransaction begin];
    [CATransaction setDisableActions:YES];
    // The system sets the scale of a view's own layer only.
    caster_.contentsScale = mask.contentsScale = self.window.backingScaleFactor;
    caster_.frame = whole;
    caster_.shadowPath = shadow.get();
    mask.frame = whole;
    mask.fillRule = kCAFillRuleEvenOdd;
    mask.path = around.get();
    [CATransaction commit];
}

- (NSView*)hitTest:(NSPoint)point {
    return nil;
}

@end
