#pragma once

#include "NSView.h"

enum NSGlassEffectViewStyle : NSInteger;

@interface NSGlassEffectView : NSView
@property(strong) NSView* contentView;
@property CGFloat cornerRadius;
@property NSGlassEffectViewStyle style;
@end
