#pragma once

#include <stdbool.h>
#include <stdint.h>

typedef unsigned char Boolean;
typedef signed int SInt32;
typedef const void* CFTypeRef;
typedef unsigned long CFTypeID;
typedef long CFIndex;
typedef const struct __CFString* CFStringRef;
typedef const struct __CFAllocator* CFAllocatorRef;

extern "C" {
CFTypeID CFGetTypeID(CFTypeRef cf);
CFTypeRef CFRetain(CFTypeRef cf);  // from memory
void CFRelease(CFTypeRef cf);
}
