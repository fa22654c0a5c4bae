#pragma once

#include "CFBase.h"

typedef const struct __CFNumber* CFNumberRef;  // from memory

extern "C" {
CFTypeID CFBooleanGetTypeID(void);
Boolean CFNumberIsFloatType(CFNumberRef number);  // from memory
}
