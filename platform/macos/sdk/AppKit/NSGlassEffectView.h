#pragma once

#include "NSView.h"

enum NSGlassEffectViewStyle : NSInteger { NSGlassEffectViewStyleClear = 1 };

@interface NSGlassEffectView : NSView
@property(strong) NSView* contentView;
@property CGFloat cornerRadius;
@property NSGlassEffectViewStyle style;
@end
