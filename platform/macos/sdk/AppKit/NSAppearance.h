#pragma once

#include <Foundation/Foundation.h>

typedef NSString* NSAppearanceName;

extern "C" {
extern NSAppearanceName const NSAppearanceNameDarkAqua;
}

@interface NSAppearance : NSObject
+ (NSAppearance*)appearanceNamed:(NSAppearanceName)name;
@end
