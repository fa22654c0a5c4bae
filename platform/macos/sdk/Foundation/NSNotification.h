#pragma once

#include "NSObjCRuntime.h"

@class NSString;
@class NSDictionary;

typedef NSString* NSNotificationName;

@interface NSNotification : NSObject
@property(readonly, copy) NSDictionary* userInfo;
@end
