#pragma once

#include <MacTypes.h>  // ::Rect, ::Point, ::Size and others, which Foundation brings in too
#include <stdbool.h>
#include <stdint.h>

typedef const void* CFTypeRef;
typedef unsigned long CFTypeID;
typedef long CFIndex;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFAllocator* CFAllocatorRef;

extern "C" {
CFTypeID CFGetTypeID(CFTypeRef cf);
CFTypeRef CFRetain(CFTypeRef cf);
void CFRelease(CFTypeRef cf);
}
