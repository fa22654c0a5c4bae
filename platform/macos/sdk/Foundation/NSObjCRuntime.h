#pragma once

#include <objc/NSObject.h>
#include <objc/objc.h>

typedef double NSTimeInterval;
