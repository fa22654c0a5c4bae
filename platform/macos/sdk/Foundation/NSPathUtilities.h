#pragma once

#include "NSObjCRuntime.h"

enum NSSearchPathDirectory : NSUInteger { NSApplicationSupportDirectory = 14 };
typedef NSUInteger NSSearchPathDomainMask;
enum : NSSearchPathDomainMask { NSUserDomainMask = 1 };
