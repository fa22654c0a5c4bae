#pragma once

#include "NSObjCRuntime.h"

@interface NSValue : NSObject
@end

@interface NSNumber : NSValue
@property(readonly) double doubleValue;       // from memory
@property(readonly) long long longLongValue;  // from memory
@property(readonly) BOOL boolValue;           // from memory
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithUnsignedLongLong:(unsigned long long)value;  // from memory
+ (NSNumber*)numberWithDouble:(double)value;
+ (NSNumber*)numberWithBool:(BOOL)value;
@end
