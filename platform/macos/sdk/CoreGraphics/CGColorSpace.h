#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct CGColorSpace* CGColorSpaceRef;

extern "C" {
extern const CFStringRef kCGColorSpaceSRGB;
CGColorSpaceRef CGColorSpaceCreateWithName(CFStringRef name);
}
