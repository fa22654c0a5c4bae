#pragma once

#include <stddef.h>
#include "CGColorSpace.h"

typedef struct CGGradient* CGGradientRef;
typedef uint32_t CGGradientDrawingOptions;

extern "C" {
CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations, size_t count);
}
