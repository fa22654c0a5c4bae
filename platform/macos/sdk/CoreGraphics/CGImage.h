#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stddef.h>

typedef struct CGImage* CGImageRef;

extern "C" {
size_t CGImageGetWidth(CGImageRef image);
size_t CGImageGetHeight(CGImageRef image);
}
