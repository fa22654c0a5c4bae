#pragma once

#include <Foundation/Foundation.h>
#include <sys/types.h>

@interface NSRunningApplication : NSObject
@property(readonly, getter=isTerminated) BOOL terminated;
@property(readonly) pid_t processIdentifier;
@property(readonly, copy) NSDate* launchDate;
@property(class, readonly, strong) NSRunningApplication* currentApplication;
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:
    (NSString*)bundleIdentifier;
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
- (BOOL)terminate;
@end
