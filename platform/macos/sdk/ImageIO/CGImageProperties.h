#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {
extern const CFStringRef kCGImagePropertyPixelWidth;   // from memory
extern const CFStringRef kCGImagePropertyPixelHeight;  // from memory
}
