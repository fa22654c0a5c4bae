#pragma once

#include <Foundation/NSObjCRuntime.h>

enum NSUserInterfaceLayoutDirection : NSInteger { NSUserInterfaceLayoutDirectionLeftToRight = 0, NSUserInterfaceLayoutDirectionRightToLeft = 1 };
