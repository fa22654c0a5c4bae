#pragma once

#include <Foundation/NSObjCRuntime.h>

@interface NSResponder : NSObject
@end
