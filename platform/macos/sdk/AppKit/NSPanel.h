#pragma once

#include "NSWindow.h"

@interface NSPanel : NSWindow
@property BOOL becomesKeyOnlyIfNeeded;
@end
