#pragma once

#include "NSAccessibilityProtocols.h"

@interface NSAccessibilityElement : NSObject <NSAccessibility>
@end
