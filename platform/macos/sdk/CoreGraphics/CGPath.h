#pragma once

#include "CGAffineTransform.h"

typedef struct CGPath* CGMutablePathRef;
typedef const struct CGPath* CGPathRef;

extern "C" {
CGMutablePathRef CGPathCreateMutable(void);
CGPathRef CGPathCreateWithRoundedRect(CGRect rect, CGFloat cornerWidth, CGFloat cornerHeight,
                                      const CGAffineTransform* transform);
void CGPathAddRect(CGMutablePathRef path, const CGAffineTransform* m, CGRect rect);
void CGPathAddRoundedRect(CGMutablePathRef path, const CGAffineTransform* transform, CGRect rect,
                          CGFloat cornerWidth, CGFloat cornerHeight);
}
