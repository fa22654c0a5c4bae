#pragma once

#include "NSObjCRuntime.h"

@class NSDictionary;
@class NSString;
@class NSURL;

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
@property(readonly, copy) NSURL* bundleURL;
@property(readonly, copy) NSURL* executableURL;
@property(readonly, copy) NSString* bundleIdentifier;
@property(readonly, copy) NSDictionary* infoDictionary;
- (NSString*)localizedStringForKey:(NSString*)key value:(NSString*)value table:(NSString*)tableName;
@end
