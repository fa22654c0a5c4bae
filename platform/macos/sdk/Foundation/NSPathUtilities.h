#pragma once

#include "NSObjCRuntime.h"

enum NSSearchPathDirectory : NSUInteger { NSApplicationSupportDirectory = 14 };  // from memory
typedef NSUInteger NSSearchPathDomainMask;                                       // from memory
enum : NSSearchPathDomainMask { NSUserDomainMask = 1 };                          // from memory
