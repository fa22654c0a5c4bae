#pragma once

#include "NSObjCRuntime.h"

@class NSDictionary;
@class NSString;

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (instancetype)initWithSuiteName:(NSString*)suitename;
- (NSDictionary*)dictionaryRepresentation;
- (id)objectForKey:(NSString*)defaultName;
- (void)setObject:(id)value forKey:(NSString*)defaultName;
- (void)removeObjectForKey:(NSString*)defaultName;
- (void)removePersistentDomainForName:(NSString*)domainName;
@end
