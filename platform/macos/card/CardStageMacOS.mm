#include "platform/macos/card/CardStageMacOS.hpp"

#import <QuartzCore/QuartzCore.h>

#include "drawing/pictures/GlassMaterial.hpp"
#include "platform/macos/card/CardShadowView.hpp"
#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

NSGlassEffectView* makeGlass(const CardStyle& style, NSView* content) {
    const Rect card{style.shadowMargin, style.shadowMargin, style.card.width, style.card.height};
    NSGlassEffectView* const glass = [[NSGlassEffectView alloc] initWithFrame:cgRect(card)];
    glass.style = static_cast<NSGlassEffectViewStyle>(style.glassStyle);
    glass.tintColor = [NSColor colorWithSRGBRed:0 green:0 blue:0 alpha:darkTintOpacity()];
    glass.cornerRadius = style.cornerRadius;
    glass.contentView = content;
    content.translatesAutoresizingMaskIntoConstraints = NO;
    [NSLayoutConstraint activateConstraints:@[
        [content.leadingAnchor constraintEqualToAnchor:glass.leadingAnchor],
        [content.trailingAnchor constraintEqualToAnchor:glass.trailingAnchor],
        [content.topAnchor constraintEqualToAnchor:glass.topAnchor],
        [content.bottomAnchor constraintEqualToAnchor:glass.bottomAnchor],
    ]];
    return glass;
}

// Relative to the layer's origin at its bottom left, where the system places a view's layer.
CATransform3D layerTransform(const Transform& transform, double height) {
    const Point centre{transform.centre.x, height - transform.centre.y};
    const CATransform3D toOrigin = CATransform3DMakeTranslation(-centre.x, -centre.y, 0);
    const CATransform3D scale = CATransform3DMakeScale(transform.scale, transform.scale, 1);
    const CATransform3D back = CATransform3DMakeTranslation(centre.x + transform.offset.x,
                                                            centre.y - transform.offset.y, 0);
    return CATransform3DConcat(CATransform3DConcat(toOrigin, scale), back);
}

}  // namespace

CardStageMacOS::CardStageMacOS(const CardStyle& style) : style_(style) {
    const double margin = style.shadowMargin;
    const NSRect whole = {{0, 0}, {style.card.width + 2 * margin, style.card.height + 2 * margin}};
    root_ = [[CardRootView alloc] initWithFrame:whole];
    stage_ = [[NSView alloc] initWithFrame:whole];
    stage_.wantsLayer = YES;
    stage_.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    stage_.hidden = YES;
    [root_ addSubview:stage_];
    CardShadowView* const shadow = [[CardShadowView alloc] initWithFrame:whole style:style];
    shadow.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [stage_ addSubview:shadow];
    content_ = [[FirstMouseHostingView alloc]
        initWithFrame:NSRect{{0, 0}, {style.card.width, style.card.height}}];
    [stage_ addSubview:makeGlass(style, content_)];
}

void CardStageMacOS::setHidden(bool hidden) { stage_.hidden = hidden; }

void CardStageMacOS::removeAnimations() {
    [stage_.layer removeAllAnimations];
    stage_.layer.transform = CATransform3DIdentity;
}

// Uses only an animation, because the system sets the layer's own transform.
void CardStageMacOS::springFrom(const Transform& start, const Spring& spring) {
    CASpringAnimation* const animation =
        [[CASpringAnimation alloc] initWithPerceptualDuration:spring.perceptualDuration
                                                       bounce:spring.bounce];
    animation.keyPath = @"transform";
    const double height = stage_.bounds.size.height;
    animation.fromValue = [NSValue valueWithCATransform3D:layerTransform(start, height)];
    animation.toValue = [NSValue valueWithCATransform3D:CATransform3DIdentity];
    animation.duration = animation.settlingDuration;
    [stage_.layer addAnimation:animation forKey:@"entrance.transform"];
}

void CardStageMacOS::setScene(const Scene& scene) { [content_ showScene:scene]; }

void CardStageMacOS::setEvents(StageEvents events) { content_.events = std::move(events); }

}  // namespace quorvane
