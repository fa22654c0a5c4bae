#pragma once

#include "NSResponder.h"

@class NSApplication;
@class NSNotification;

enum NSApplicationActivationPolicy : NSInteger { NSApplicationActivationPolicyAccessory = 1 };

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app;  // from memory
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) NSApplication* sharedApplication;
@property(weak) id<NSApplicationDelegate> delegate;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)run;
- (void)terminate:(id)sender;
@end
