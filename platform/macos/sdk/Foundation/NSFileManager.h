#pragma once

#include "NSObjCRuntime.h"
#include "NSPathUtilities.h"

@class NSArray;
@class NSDictionary;
@class NSError;
@class NSString;
@class NSURL;

typedef NSString* NSFileAttributeKey;

extern "C" {
extern NSFileAttributeKey const NSFilePosixPermissions;
}

@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSArray*)URLsForDirectory:(NSSearchPathDirectory)directory
                   inDomains:(NSSearchPathDomainMask)domainMask;
- (BOOL)createDirectoryAtURL:(NSURL*)url
    withIntermediateDirectories:(BOOL)createIntermediates
                     attributes:(NSDictionary*)attributes
                          error:(NSError**)error;
- (BOOL)setAttributes:(NSDictionary*)attributes ofItemAtPath:(NSString*)path error:(NSError**)error;
- (BOOL)copyItemAtURL:(NSURL*)srcURL toURL:(NSURL*)dstURL error:(NSError**)error;
- (BOOL)linkItemAtURL:(NSURL*)srcURL toURL:(NSURL*)dstURL error:(NSError**)error;
- (BOOL)removeItemAtURL:(NSURL*)URL error:(NSError**)error;
- (BOOL)fileExistsAtPath:(NSString*)path;
- (NSURL*)containerURLForSecurityApplicationGroupIdentifier:(NSString*)groupIdentifier;
@end
