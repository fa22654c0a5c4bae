// What the compiler for macOS brings along as <objc/NSObjCRuntime.h>, for running on Linux.
#pragma once

#include <objc/objc.h>

typedef long NSInteger;
typedef unsigned long NSUInteger;
