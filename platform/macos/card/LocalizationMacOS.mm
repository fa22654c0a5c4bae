#include "platform/macos/card/CardMacOS.hpp"

#import <AppKit/AppKit.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

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
