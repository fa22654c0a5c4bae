// Layers and animations.
#import <QuartzCore/QuartzCore.h>

#include "tests/macos_runtime/fakes/Fakes.hpp"

@interface CALayer () <Recorded>
@end
@implementation CALayer {
    NSMutableArray* sublayers_;
    id shadowColor_;
    id shadowPath_;
}
+ (instancetype)layer {
    CALayer* const layer = [self new];
    layer->sublayers_ = [NSMutableArray new];
    return layer;
}
- (void)addSublayer:(CALayer*)layer {
    [sublayers_ addObject:layer];
}
- (void)addAnimation:(CAAnimation*)anim forKey:(NSString*)key {
}
- (void)removeAllAnimations {
}
// The system keeps what C functions made; the compiler's accessors would not.
- (void)setShadowColor:(CGColorRef)shadowColor {
    shadowColor_ = (__bridge id)shadowColor;
}
- (CGColorRef)shadowColor {
    return (__bridge CGColorRef)shadowColor_;
}
- (void)setShadowPath:(CGPathRef)shadowPath {
    shadowPath_ = (__bridge id)shadowPath;
}
- (CGPathRef)shadowPath {
    return (__bridge CGPathRef)shadowPath_;
}
@end

@interface CAShapeLayer () <Recorded>
@end
@implementation CAShapeLayer {
    id path_;
}
- (void)setPath:(CGPathRef)path {
    path_ = (__bridge id)path;
}
- (CGPathRef)path {
    return (__bridge CGPathRef)path_;
}
@end

@interface CAAnimation () <Recorded>
@end
@implementation CAAnimation
@synthesize duration = duration_;
@end
@interface CAPropertyAnimation () <Recorded>
@end
@implementation CAPropertyAnimation
@end
@interface CABasicAnimation () <Recorded>
@end
@implementation CABasicAnimation
@end
@interface CASpringAnimation () <Recorded>
@end
@implementation CASpringAnimation
- (instancetype)initWithPerceptualDuration:(CFTimeInterval)perceptualDuration
                                    bounce:(CGFloat)bounce {
    return [super init];
}
- (CFTimeInterval)settlingDuration {
    return 0.8125;  // any number that no code would come upon by itself
}
@end

@interface CATransaction () <Recorded>
@end
@implementation CATransaction
+ (void)begin {
}
+ (void)commit {
}
+ (void)setDisableActions:(BOOL)flag {
}
@end

CAShapeLayerFillRule const kCAFillRuleEvenOdd = @"even-odd";
const CATransform3D CATransform3DIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

CATransform3D CATransform3DMakeTranslation(CGFloat tx, CGFloat ty, CGFloat tz) {
    CATransform3D t = CATransform3DIdentity;
    t.m41 = tx;
    t.m42 = ty;
    t.m43 = tz;
    return t;
}
CATransform3D CATransform3DMakeScale(CGFloat sx, CGFloat sy, CGFloat sz) {
    CATransform3D t = CATransform3DIdentity;
    t.m11 = sx;
    t.m22 = sy;
    t.m33 = sz;
    return t;
}
// Values, so it works: rows of the first with columns of the second.
CATransform3D CATransform3DConcat(CATransform3D a, CATransform3D b) {
    CATransform3D product = {};
    const auto at = [](auto& t, int row, int column) -> auto& {
        return (&t.m11)[4 * row + column];
    };
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            for (int i = 0; i < 4; ++i)
                at(product, row, column) += at(a, row, i) * at(b, i, column);
    return product;
}
