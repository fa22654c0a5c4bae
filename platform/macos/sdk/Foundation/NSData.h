#pragma once

#include "NSObjCRuntime.h"

@class NSError;
@class NSURL;

typedef NSUInteger NSDataReadingOptions;
typedef NSUInteger NSDataWritingOptions;
enum : NSDataWritingOptions { NSDataWritingAtomic = 1 };

@interface NSData : NSObject
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes __attribute__((objc_returns_inner_pointer));
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length;
+ (instancetype)dataWithContentsOfURL:(NSURL*)url
                              options:(NSDataReadingOptions)readOptionsMask
                                error:(NSError**)errorPtr;
- (BOOL)writeToURL:(NSURL*)url
           options:(NSDataWritingOptions)writeOptionsMask
             error:(NSError**)errorPtr;
@end

@interface NSMutableData : NSData
@property(readonly) void* mutableBytes __attribute__((objc_returns_inner_pointer));
+ (instancetype)dataWithCapacity:(NSUInteger)aNumItems;
- (void)appendBytes:(const void*)bytes length:(NSUInteger)length;
@end
