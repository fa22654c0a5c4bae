#pragma once

#include "NSObjCRuntime.h"

@class NSString;

@interface NSURL : NSObject
@property(readonly, copy) NSString* path;
@property(readonly) const char* fileSystemRepresentation;
+ (NSURL*)fileURLWithFileSystemRepresentation:(const char*)path
                                  isDirectory:(BOOL)isDir
                                relativeToURL:(NSURL*)baseURL;
@end
