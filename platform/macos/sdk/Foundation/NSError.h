#pragma once

#include "NSObjCRuntime.h"

@class NSString;

typedef NSString* NSErrorDomain;

extern "C" {
extern NSErrorDomain const NSCocoaErrorDomain;
extern NSErrorDomain const NSPOSIXErrorDomain;
}

@interface NSError : NSObject
@property(readonly, copy) NSErrorDomain domain;
@property(readonly) NSInteger code;
@property(readonly, copy) NSString* localizedDescription;
@end
