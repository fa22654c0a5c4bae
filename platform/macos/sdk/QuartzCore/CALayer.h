#pragma once

#include "CAAnimation.h"
#include "CATransform3D.h"

@interface CALayer : NSObject
+ (instancetype)layer;
@property CGRect frame;
@property CATransform3D transform;
@property CGFloat contentsScale;
@property CGColorRef shadowColor;
@property float shadowOpacity;
@property CGSize shadowOffset;
@property CGFloat shadowRadius;
@property CGPathRef shadowPath;
@property(strong) CALayer* mask;
- (void)addSublayer:(CALayer*)layer;
- (void)addAnimation:(CAAnimation*)anim forKey:(NSString*)key;
- (void)removeAllAnimations;
@end
