#pragma once

#include <Foundation/Foundation.h>

@protocol CAMediaTiming
@property CFTimeInterval duration;
@property float repeatCount;
@end
