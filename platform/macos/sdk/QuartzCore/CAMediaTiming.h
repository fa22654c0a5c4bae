#pragma once

#include <Foundation/Foundation.h>

@protocol CAMediaTiming
@property CFTimeInterval duration;
@end
