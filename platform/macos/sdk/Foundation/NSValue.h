#pragma once

#include "NSObjCRuntime.h"

@interface NSValue : NSObject
@end

@interface NSNumber : NSValue
@property(readonly) double doubleValue;
@property(readonly) long long longLongValue;
@property(readonly) BOOL boolValue;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithUnsignedLongLong:(unsigned long long)value;
+ (NSNumber*)numberWithDouble:(double)value;
+ (NSNumber*)numberWithBool:(BOOL)value;
@end
