#pragma once

#include <Foundation/Foundation.h>

@interface NSColor : NSObject
@property(class, strong, readonly) NSColor* clearColor;
+ (NSColor*)colorWithSRGBRed:(CGFloat)red
                       green:(CGFloat)green
                        blue:(CGFloat)blue
                       alpha:(CGFloat)alpha;
@end
