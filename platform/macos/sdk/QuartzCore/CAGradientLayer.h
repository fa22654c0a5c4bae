#pragma once

#include "CALayer.h"

@interface CAGradientLayer : CALayer
@property(copy) NSArray* colors;
@property(copy) NSArray* locations;
@property CGPoint startPoint;
@property CGPoint endPoint;
@end
