#pragma once

#include <Foundation/NSObjCRuntime.h>

enum NSUserInterfaceLayoutDirection : NSInteger { NSUserInterfaceLayoutDirectionRightToLeft = 1 };
