#pragma once

#include "CFBase.h"

typedef const struct __CFNumber* CFNumberRef;

extern "C" {
CFTypeID CFBooleanGetTypeID(void);
Boolean CFNumberIsFloatType(CFNumberRef number);
}
