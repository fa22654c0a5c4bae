#pragma once

#include <CoreFoundation/CFCGTypes.h>

typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
