// What the compiler for macOS brings along as <objc/NSObject.h>, for running on Linux.
#pragma once

#include <objc/NSObjCRuntime.h>

@class NSString;

@protocol NSObject
- (BOOL)isEqual:(id)object;
@property(readonly, copy) NSString* description;
- (BOOL)isKindOfClass:(Class)aClass;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
+ (instancetype)alloc;
+ (instancetype)new;
+ (Class)class;
- (instancetype)init;
- (id)copy;
@end
