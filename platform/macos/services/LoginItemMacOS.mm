#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#import <ServiceManagement/ServiceManagement.h>

#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/services/InstallationMacOS.hpp"

namespace quorvane {
namespace {

Result<void> registerItem() {
    NSError* error = nil;
    if ([SMAppService.mainAppService registerAndReturnError:&error]) return {};
    return std::unexpected{errorFrom(error)};
}

Result<void> unregisterItem() {
    NSError* error = nil;
    if ([SMAppService.mainAppService unregisterAndReturnError:&error]) return {};
    return std::unexpected{errorFrom(error)};
}

}  // namespace

LoginItemClient makeLoginItemMacOS() {
    return {.status = [] { return static_cast<std::int64_t>(SMAppService.mainAppService.status); },
            .registerItem = registerItem,
            .unregisterItem = unregisterItem};
}

}  // namespace quorvane
