#pragma once

#include "NSObjCRuntime.h"

@class NSData;
@class NSError;

enum NSPropertyListFormat : NSUInteger;
typedef NSUInteger NSPropertyListReadOptions;
enum : NSUInteger { NSPropertyListImmutable = 0 };

@interface NSPropertyListSerialization : NSObject
+ (id)propertyListWithData:(NSData*)data
                   options:(NSPropertyListReadOptions)opt
                    format:(NSPropertyListFormat*)format
                     error:(NSError**)error;
@end
