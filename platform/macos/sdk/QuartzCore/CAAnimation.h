#pragma once

#include "CAMediaTiming.h"

@interface CAAnimation : NSObject <CAMediaTiming>
@end

@interface CAPropertyAnimation : CAAnimation
@property(copy) NSString* keyPath;
@end

@interface CABasicAnimation : CAPropertyAnimation
@property(strong) id fromValue;
@property(strong) id toValue;
@end

@interface CAKeyframeAnimation : CAPropertyAnimation
@property(copy) NSArray* values;
@property(copy) NSArray* keyTimes;
@end

@interface CASpringAnimation : CABasicAnimation
- (instancetype)initWithPerceptualDuration:(CFTimeInterval)perceptualDuration
                                    bounce:(CGFloat)bounce;
@property(readonly) CFTimeInterval settlingDuration;
@end
