#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct CGColor* CGColorRef;

extern "C" {
CGColorRef CGColorCreateSRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha);
}
