#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <Foundation/Foundation.h>

@interface NSGraphicsContext : NSObject
@property(class, strong) NSGraphicsContext* currentContext;
@property(readonly) CGContextRef CGContext;
@end
