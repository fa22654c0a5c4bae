#pragma once

#include "NSObjCRuntime.h"

@class NSString;

@interface NSURL : NSObject
@property(readonly, copy) NSString* path;
+ (NSURL*)fileURLWithPath:(NSString*)path;
@end
