#pragma once

#include <Foundation/Foundation.h>

@class NSEvent;

@interface NSResponder : NSObject
- (void)mouseDown:(NSEvent*)event;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseDragged:(NSEvent*)event;
- (void)mouseMoved:(NSEvent*)event;
- (void)mouseEntered:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
- (void)mouseCancelled:(NSEvent*)event;
@end
