#pragma once

#include "NSObjCRuntime.h"

@class NSDictionary;
@class NSOperationQueue;
@class NSString;

typedef NSString* NSNotificationName;

@interface NSNotification : NSObject
@property(readonly, copy) NSDictionary* userInfo;
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (void)removeObserver:(id)observer;
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)obj
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
@end
