#pragma once

#include "NSColor.h"
#include "NSView.h"

enum NSGlassEffectViewStyle : NSInteger;

@interface NSGlassEffectView : NSView
@property(strong) NSView* contentView;
@property CGFloat cornerRadius;
@property(copy) NSColor* tintColor;
@property NSGlassEffectViewStyle style;
@end
