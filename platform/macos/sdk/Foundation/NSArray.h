#pragma once

#include "NSEnumerator.h"

@interface NSArray<ObjectType> : NSObject <NSFastEnumeration>
@property(readonly) ObjectType firstObject;
+ (instancetype)arrayWithObjects:(const ObjectType[])objects count:(NSUInteger)cnt;
@end

@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
+ (instancetype)arrayWithCapacity:(NSUInteger)numItems;
- (void)addObject:(ObjectType)anObject;
@end
