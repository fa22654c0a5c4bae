#pragma once

#include "CGAffineTransform.h"
#include "CGColor.h"
#include "CGGradient.h"
#include "CGImage.h"
#include "CGPath.h"

typedef struct CGContext* CGContextRef;

enum CGBlendMode : int32_t { kCGBlendModeDestinationIn = 22 };
enum CGInterpolationQuality : int32_t { kCGInterpolationHigh = 3 };

extern "C" {
void CGContextSaveGState(CGContextRef c);
void CGContextRestoreGState(CGContextRef c);
void CGContextTranslateCTM(CGContextRef c, CGFloat tx, CGFloat ty);
void CGContextScaleCTM(CGContextRef c, CGFloat sx, CGFloat sy);
void CGContextAddPath(CGContextRef c, CGPathRef path);
void CGContextEOFillPath(CGContextRef c);
void CGContextClip(CGContextRef c);
void CGContextClipToRect(CGContextRef c, CGRect rect);
void CGContextSetFillColorWithColor(CGContextRef c, CGColorRef color);
void CGContextSetAlpha(CGContextRef c, CGFloat alpha);
void CGContextSetBlendMode(CGContextRef c, CGBlendMode mode);
void CGContextSetInterpolationQuality(CGContextRef c, CGInterpolationQuality quality);
void CGContextBeginTransparencyLayer(CGContextRef c, CFDictionaryRef auxiliaryInfo);
void CGContextEndTransparencyLayer(CGContextRef c);
void CGContextSetTextMatrix(CGContextRef c, CGAffineTransform t);
void CGContextSetTextPosition(CGContextRef c, CGFloat x, CGFloat y);
void CGContextDrawImage(CGContextRef c, CGRect rect, CGImageRef image);
void CGContextDrawLinearGradient(CGContextRef c, CGGradientRef gradient, CGPoint startPoint,
                                 CGPoint endPoint, CGGradientDrawingOptions options);
}
