#pragma once

#include <CoreGraphics/CoreGraphics.h>

typedef const struct __CTLine* CTLineRef;
enum CTLineTruncationType : uint32_t { kCTLineTruncationEnd = 1 };

extern "C" {
CTLineRef CTLineCreateWithAttributedString(CFAttributedStringRef attrString);
CTLineRef CTLineCreateTruncatedLine(CTLineRef line, double width,
                                    CTLineTruncationType truncationType, CTLineRef truncationToken);
double CTLineGetTypographicBounds(CTLineRef line, CGFloat* ascent, CGFloat* descent,
                                  CGFloat* leading);
void CTLineDraw(CTLineRef line, CGContextRef context);
}
