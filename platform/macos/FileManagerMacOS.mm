#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#import <Foundation/Foundation.h>

#include "platform/macos/FoundationValues.hpp"
#include "platform/macos/InstallationMacOS.hpp"

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

// From the file: the system's bundle objects keep what they have read once.
std::optional<std::string> identity(const std::filesystem::path& bundle) {
    NSData* data = [NSData dataWithContentsOfURL:urlFrom(bundle / "Contents" / "Info.plist")
                                         options:0
                                           error:nil];
    if (!data) return std::nullopt;
    const auto list =
        valueFrom([NSPropertyListSerialization propertyListWithData:data
                                                            options:NSPropertyListImmutable
                                                             format:nil
                                                              error:nil]);
    const auto* const properties = list ? list->as<PropertyDictionary>() : nullptr;
    const auto* const identifier =
        properties ? find<std::string>(*properties, "CFBundleIdentifier") : nullptr;
    return identifier ? std::optional{*identifier} : std::nullopt;
}

}  // namespace

FileManagerClient makeFileManagerMacOS() {
    return {.removeItem = removeItem, .fileExists = fileExists, .identity = identity};
}

}  // namespace quorvane
