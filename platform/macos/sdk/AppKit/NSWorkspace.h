#pragma once

#include <Foundation/Foundation.h>

extern "C" {
extern NSNotificationName const NSWorkspaceDidWakeNotification;
extern NSNotificationName const NSWorkspaceScreensDidSleepNotification;
extern NSNotificationName const NSWorkspaceScreensDidWakeNotification;
extern NSNotificationName const NSWorkspaceSessionDidBecomeActiveNotification;
extern NSNotificationName const NSWorkspaceSessionDidResignActiveNotification;
}

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@end
