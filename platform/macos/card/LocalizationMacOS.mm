#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/card/LocalizationMacOS.hpp"

#import <AppKit/AppKit.h>

#include "platform/macos/foundation/FoundationValues.hpp"

namespace quorvane {

std::string localizedMacOS(const std::string& key) {
    return textFrom([NSBundle.mainBundle localizedStringForKey:stringFrom(key)
                                                         value:nil
                                                         table:nil]);
}

bool isRightToLeftMacOS() {
    return NSApplication.sharedApplication.userInterfaceLayoutDirection ==
           NSUserInterfaceLayoutDirectionRightToLeft;
}

}  // namespace quorvane
