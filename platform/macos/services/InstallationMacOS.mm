#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/services/InstallationMacOS.hpp"

#import <Foundation/Foundation.h>

#include "platform/macos/foundation/FoundationValues.hpp"

namespace quorvane {
namespace {

std::optional<std::filesystem::path> applicationSupport() {
    NSURL* url = [NSFileManager.defaultManager URLsForDirectory:NSApplicationSupportDirectory
                                                      inDomains:NSUserDomainMask]
                     .firstObject;
    if (!url) return std::nullopt;
    return pathFrom(url);
}

}  // namespace

Installation makeInstallationMacOS() {
    return {.loginItem = makeLoginItemMacOS(),
            .fileManager = makeFileManagerMacOS(),
            .runningApplications = makeRunningApplicationsMacOS(),
            .openApplication = makeOpenApplicationMacOS(),
            .applicationSupport = applicationSupport()};
}

}  // namespace quorvane
