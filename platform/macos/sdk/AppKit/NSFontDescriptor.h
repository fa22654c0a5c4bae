#pragma once

#include <Foundation/Foundation.h>

typedef CGFloat NSFontWeight;

extern "C" {
extern const NSFontWeight NSFontWeightRegular;
extern const NSFontWeight NSFontWeightMedium;
extern const NSFontWeight NSFontWeightSemibold;
extern const NSFontWeight NSFontWeightBold;
}
