#pragma once

#include "NSObjCRuntime.h"

@interface NSDate : NSObject
@property(readonly) NSTimeInterval timeIntervalSince1970;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs;
@end
