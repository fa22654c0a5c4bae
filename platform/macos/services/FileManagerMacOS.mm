#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#import <Foundation/Foundation.h>

#include "platform/macos/files/BundlePropertiesMacOS.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/services/InstallationMacOS.hpp"

namespace quorvane {
namespace {

Result<void> removeItem(const std::filesystem::path& path) {
    NSError* error = nil;
    if ([NSFileManager.defaultManager removeItemAtURL:urlFrom(path) error:&error]) return {};
    return std::unexpected{errorFrom(error)};
}

bool fileExists(const std::filesystem::path& path) {
    return [NSFileManager.defaultManager fileExistsAtPath:stringFrom(path.native())];
}

std::optional<std::string> identity(const std::filesystem::path& bundle) {
    const PropertyDictionary properties = propertiesOfBundleMacOS(bundle);
    const auto* const identifier = find<std::string>(properties, "CFBundleIdentifier");
    return identifier ? std::optional{*identifier} : std::nullopt;
}

}  // namespace

FileManagerClient makeFileManagerMacOS() {
    return {.removeItem = removeItem, .fileExists = fileExists, .identity = identity};
}

}  // namespace quorvane
