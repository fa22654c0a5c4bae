#pragma once

#include "NSObjCRuntime.h"

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
@end
