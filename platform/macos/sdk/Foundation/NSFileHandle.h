#pragma once

#include "NSObjCRuntime.h"

@class NSData;
@class NSError;

@interface NSFileHandle : NSObject
- (NSData*)readDataToEndOfFileAndReturnError:(NSError**)error;
@end

@interface NSPipe : NSObject
@property(readonly, retain) NSFileHandle* fileHandleForReading;
+ (NSPipe*)pipe;
@end
