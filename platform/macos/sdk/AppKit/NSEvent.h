#pragma once

#include <Foundation/Foundation.h>

enum NSEventType : NSUInteger {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeMouseCancelled = 40
};

@interface NSEvent : NSObject
@property(readonly) NSEventType type;
@property(readonly) NSPoint locationInWindow;
@property(class, readonly) NSPoint mouseLocation;
@end
