#pragma once

#include "CGAffineTransform.h"
#include "CGColor.h"
#include "CGGradient.h"
#include "CGImage.h"
#include "CGPath.h"

typedef struct CGContext* CGContextRef;

enum CGBlendMode : int32_t { kCGBlendModeDestinationIn = 22 };
enum CGInterpolationQuality : int32_t { kCGInterpolationHigh = 3 };  // from memory

extern "C" {
void CGContextSaveGState(CGContextRef c);                               // from memory
void CGContextRestoreGState(CGContextRef c);                            // from memory
void CGContextTranslateCTM(CGContextRef c, CGFloat tx, CGFloat ty);     // from memory
void CGContextScaleCTM(CGContextRef c, CGFloat sx, CGFloat sy);         // from memory
void CGContextAddPath(CGContextRef c, CGPathRef path);                  // from memory
void CGContextEOFillPath(CGContextRef c);                               // from memory
void CGContextClip(CGContextRef c);                                     // from memory
void CGContextClipToRect(CGContextRef c, CGRect rect);                  // from memory
void CGContextSetFillColorWithColor(CGContextRef c, CGColorRef color);  // from memory
void CGContextSetAlpha(CGContextRef c, CGFloat alpha);                  // from memory
void CGContextSetBlendMode(CGContextRef c, CGBlendMode mode);           // from memory
void CGContextSetInterpolationQuality(CGContextRef c,
                                      CGInterpolationQuality quality);                // from memory
void CGContextBeginTransparencyLayer(CGContextRef c, CFDictionaryRef auxiliaryInfo);  // from memory
void CGContextEndTransparencyLayer(CGContextRef c);                                   // from memory
void CGContextSetTextMatrix(CGContextRef c, CGAffineTransform t);                     // from memory
void CGContextSetTextPosition(CGContextRef c, CGFloat x, CGFloat y);                  // from memory
void CGContextDrawImage(CGContextRef c, CGRect rect, CGImageRef image);               // from memory
void CGContextDrawLinearGradient(CGContextRef c, CGGradientRef gradient, CGPoint startPoint,
                                 CGPoint endPoint,
                                 CGGradientDrawingOptions options);  // from memory
}
