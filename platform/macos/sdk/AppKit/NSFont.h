#pragma once

#include "NSFontDescriptor.h"

@interface NSFont : NSObject
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
@property(readonly) CGFloat ascender;
@property(readonly) CGFloat descender;
@end
