#pragma once

#include "NSEnumerator.h"

@interface NSArray<ObjectType> : NSObject <NSFastEnumeration>
@property(readonly) ObjectType firstObject;  // from memory
+ (instancetype)arrayWithObjects:(const ObjectType[])objects count:(NSUInteger)cnt;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
+ (instancetype)arrayWithCapacity:(NSUInteger)numItems;  // from memory
- (void)addObject:(ObjectType)anObject;                  // from memory
@end
