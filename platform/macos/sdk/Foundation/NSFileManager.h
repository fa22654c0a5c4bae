#pragma once

#include "NSObjCRuntime.h"
#include "NSPathUtilities.h"

@class NSArray;
@class NSDictionary;
@class NSError;
@class NSString;
@class NSURL;

typedef NSString* NSFileAttributeKey;  // from memory

extern "C" {
extern NSFileAttributeKey const NSFilePosixPermissions;  // from memory
}

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory
                   inDomains:(NSSearchPathDomainMask)domainMask;  // from memory
- (BOOL)createDirectoryAtURL:(NSURL*)url
    withIntermediateDirectories:(BOOL)createIntermediates
                     attributes:(NSDictionary*)attributes
                          error:(NSError**)error;  // from memory
- (BOOL)setAttributes:(NSDictionary*)attributes
         ofItemAtPath:(NSString*)path
                error:(NSError**)error;                                            // from memory
- (BOOL)copyItemAtURL:(NSURL*)srcURL toURL:(NSURL*)dstURL error:(NSError**)error;  // from memory
- (BOOL)linkItemAtURL:(NSURL*)srcURL toURL:(NSURL*)dstURL error:(NSError**)error;  // from memory
- (BOOL)removeItemAtURL:(NSURL*)URL error:(NSError**)error;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (NSURL*)containerURLForSecurityApplicationGroupIdentifier:(NSString*)groupIdentifier;
@end
