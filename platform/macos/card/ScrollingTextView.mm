#include "platform/macos/card/ScrollingTextView.hpp"

#import <QuartzCore/QuartzCore.h>

#include <cmath>

#include "drawing/TextPlacement.hpp"
#include "platform/macos/card/CoreGraphicsCanvas.hpp"
#include "platform/macos/card/CoreGraphicsValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

// Draws a scene once, for its layer to be moved.
@interface MovedTextView : NSView
- (instancetype)initWithFrame:(NSRect)frame scene:(quorvane::Scene)scene;
@end

@implementation MovedTextView {
    quorvane::Scene scene_;
    quorvane::CoreGraphicsCanvas canvas_;
}

- (instancetype)initWithFrame:(NSRect)frame scene:(quorvane::Scene)scene {
    self = [super initWithFrame:frame];
    if (self == nil) return nil;
    scene_ = std::move(scene);
    self.wantsLayer = YES;
    return self;
}

- (BOOL)isFlipped {
    return YES;
}

- (void)drawRect:(NSRect)dirtyRect {
    canvas_.draw(scene_);
}

@end

namespace quorvane {
namespace {

// The frame's fading ends, as the mask of a layer.
CALayer* makeFade(const TextNode& node) {
    NSMutableArray* const colors = [NSMutableArray arrayWithCapacity:fadeStops(node).size()];
    NSMutableArray* const places = [NSMutableArray arrayWithCapacity:fadeStops(node).size()];
    for (const FadeStop& stop : fadeStops(node)) {
        [colors addObject:(__bridge id)makeColor(Color::black(stop.strength)).get()];
        [places addObject:@(stop.place)];
    }
    CAGradientLayer* const fade = [CAGradientLayer layer];
    fade.frame = {{0, 0}, {node.frame.width, node.frame.height}};
    fade.colors = colors;
    fade.locations = places;
    fade.startPoint = {0, 0.5};
    fade.endPoint = {1, 0.5};
    return fade;
}

CAAnimation* makeScrolling(const TextNode::Motion& motion, double distance) {
    const double cycle = motion.rest + std::abs(distance) / motion.speed;
    CAKeyframeAnimation* const scrolling = [[CAKeyframeAnimation alloc] init];
    scrolling.keyPath = @"transform.translation.x";
    scrolling.values = @[ @0.0, @0.0, @(distance) ];
    scrolling.keyTimes = @[ @0.0, @(motion.rest / cycle), @1.0 ];
    scrolling.duration = cycle;
    scrolling.repeatCount = HUGE_VALF;
    return scrolling;
}

}  // namespace
}  // namespace quorvane

@implementation ScrollingTextView {
    quorvane::TextNode node_;
}

- (instancetype)initWithNode:(const quorvane::TextNode&)node isRightToLeft:(BOOL)isRightToLeft {
    self = [super initWithFrame:quorvane::cgRect(node.frame)];
    if (self == nil) return nil;
    node_ = node;
    self.wantsLayer = YES;
    self.layer.mask = quorvane::makeFade(node);
    quorvane::TextLinesMacOS lines;
    const double width = lines.line(node.text, node.font).width;
    const quorvane::MovedLine moved = quorvane::movedLine(node, width, isRightToLeft);
    quorvane::TextNode text = node;
    text.scroll.reset();
    quorvane::Scene scene;
    for (const double left : {moved.left, moved.copyLeft}) {
        text.frame = {left - moved.area.x, 0, width, node.frame.height};
        scene.nodes.push_back(text);
    }
    const quorvane::Rect place = moved.area.movedBy(-node.frame.x, -node.frame.y);
    MovedTextView* const strip = [[MovedTextView alloc] initWithFrame:quorvane::cgRect(place)
                                                                scene:std::move(scene)];
    [self addSubview:strip];
    [strip.layer addAnimation:quorvane::makeScrolling(*node.scroll->motion, moved.distance)
                       forKey:@"scrolling"];
    return self;
}

- (const quorvane::TextNode&)node {
    return node_;
}

@end
