#pragma once

#include "CFBase.h"

typedef uint8_t UInt8;
typedef const struct __CFData* CFDataRef;

extern "C" {
CFDataRef CFDataCreate(CFAllocatorRef allocator, const UInt8* bytes, CFIndex length);
CFIndex CFDataGetLength(CFDataRef theData);
const UInt8* CFDataGetBytePtr(CFDataRef theData);
}
