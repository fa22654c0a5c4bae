#pragma once

#include "NSObjCRuntime.h"

@class NSArray;
@class NSError;
@class NSURL;

@interface NSTask : NSObject
@property(copy) NSURL* executableURL;
@property(copy) NSArray* arguments;
@property(retain) id standardOutput;
@property(retain) id standardError;
@property(readonly) int terminationStatus;
- (BOOL)launchAndReturnError:(NSError**)error;
- (void)waitUntilExit;
@end
