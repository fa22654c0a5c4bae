#pragma once

#include <Foundation/Foundation.h>

extern "C" {
extern NSNotificationName const NSWorkspaceDidWakeNotification;
}

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly) BOOL accessibilityDisplayShouldReduceMotion;
@end
