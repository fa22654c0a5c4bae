#pragma once

#include "CALayer.h"

typedef NSString* CAShapeLayerFillRule;

extern "C" {
extern CAShapeLayerFillRule const kCAFillRuleEvenOdd;
}

@interface CAShapeLayer : CALayer
@property CGPathRef path;
@property(copy) CAShapeLayerFillRule fillRule;
@end
