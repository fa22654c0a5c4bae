#pragma once

#include "NSObjCRuntime.h"

@class NSError;
@class NSURL;

typedef NSUInteger NSDataReadingOptions;  // from memory
typedef NSUInteger NSDataWritingOptions;
enum : NSDataWritingOptions { NSDataWritingAtomic = 1 };

@interface NSData : NSObject
@property(readonly) NSUInteger length;                                              // from memory
@property(readonly) const void* bytes __attribute__((objc_returns_inner_pointer));  // from memory
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;         // from memory
+ (instancetype)dataWithContentsOfURL:(NSURL*)url
                              options:(NSDataReadingOptions)readOptionsMask
                                error:(NSError**)errorPtr;
- (BOOL)writeToURL:(NSURL*)url
           options:(NSDataWritingOptions)writeOptionsMask
             error:(NSError**)errorPtr;
@end

@interface NSMutableData : NSData
@property(readonly) void* mutableBytes __attribute__((objc_returns_inner_pointer));  // from memory
+ (instancetype)dataWithCapacity:(NSUInteger)aNumItems;                              // from memory
- (void)appendBytes:(const void*)bytes length:(NSUInteger)length;                    // from memory
@end
