#pragma once

#include "NSObjCRuntime.h"

@class NSString;

@interface NSUUID : NSObject
@property(readonly, copy) NSString* UUIDString;
+ (instancetype)UUID;
@end
