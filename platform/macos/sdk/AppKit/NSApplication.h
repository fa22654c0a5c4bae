#pragma once

#include <Foundation/NSNotification.h>

#include "NSResponder.h"
#include "NSUserInterfaceLayout.h"

@class NSApplication;

extern "C" {
extern NSNotificationName const NSApplicationDidChangeScreenParametersNotification;
}

enum NSApplicationActivationPolicy : NSInteger { NSApplicationActivationPolicyAccessory = 1 };

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app;
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) NSApplication* sharedApplication;
@property(readonly) NSUserInterfaceLayoutDirection userInterfaceLayoutDirection;
@property(weak) id<NSApplicationDelegate> delegate;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)run;
- (void)terminate:(id)sender;
@end
