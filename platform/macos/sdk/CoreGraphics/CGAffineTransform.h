#pragma once

#include <CoreFoundation/CFCGTypes.h>

typedef struct CGAffineTransform {
    CGFloat a, b, c, d, tx, ty;
} CGAffineTransform;

extern "C" {
CGAffineTransform CGAffineTransformMakeScale(CGFloat sx, CGFloat sy);
}
