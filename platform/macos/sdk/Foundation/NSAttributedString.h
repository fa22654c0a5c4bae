#pragma once

#include "NSObjCRuntime.h"

@class NSDictionary;
@class NSString;

@interface NSAttributedString : NSObject
- (instancetype)initWithString:(NSString*)str attributes:(NSDictionary*)attrs;
@end
