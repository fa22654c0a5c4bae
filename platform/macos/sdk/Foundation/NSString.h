#pragma once

#include "NSObjCRuntime.h"

typedef NSUInteger NSStringEncoding;                   // from memory
enum : NSStringEncoding { NSUTF8StringEncoding = 4 };  // from memory

@interface NSString : NSObject
@property(readonly) const char* UTF8String __attribute__((objc_returns_inner_pointer))
;  // from memory
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)len
                     encoding:(NSStringEncoding)encoding;        // from memory
- (NSUInteger)lengthOfBytesUsingEncoding:(NSStringEncoding)enc;  // from memory
- (BOOL)isEqualToString:(NSString*)aString;                      // from memory
@end
