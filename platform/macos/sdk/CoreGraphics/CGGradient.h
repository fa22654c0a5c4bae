#pragma once

#include <stddef.h>
#include "CGColorSpace.h"

typedef struct CGGradient* CGGradientRef;   // from memory
typedef uint32_t CGGradientDrawingOptions;  // from memory

extern "C" {
CGGradientRef CGGradientCreateWithColorComponents(CGColorSpaceRef space, const CGFloat* components,
                                                  const CGFloat* locations,
                                                  size_t count);  // from memory
}
