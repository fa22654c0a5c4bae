#pragma once

#include <Foundation/Foundation.h>

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@property(readonly) CGFloat backingScaleFactor;
@end
