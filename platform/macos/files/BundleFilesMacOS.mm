#include "platform/BundleFiles.hpp"

#import <Foundation/Foundation.h>
#include <stdio.h>

#include <cerrno>
#include <cstring>

#include "platform/macos/files/FilesMacOS.hpp"
#include "platform/macos/foundation/FoundationValues.hpp"
#include "platform/macos/foundation/ReferenceCounting.hpp"

namespace quorvane {
namespace {

using std::filesystem::path;

constexpr char kHiddenPrefix[] = ".staged-";

Result<path> stage(const path& bundle, const path& folder) {
    @autoreleasepool {
        NSFileManager* files = NSFileManager.defaultManager;
        const path hidden = folder / (kHiddenPrefix + textFrom([NSUUID UUID].UUIDString));
        const path copy = hidden / bundle.filename();
        NSError* error = nil;
        if ([files createDirectoryAtURL:urlFrom(hidden)
                withIntermediateDirectories:YES
                                 attributes:nil
                                      error:&error] &&
            [files copyItemAtURL:urlFrom(bundle) toURL:urlFrom(copy) error:&error])
            return copy;
        [files removeItemAtURL:urlFrom(hidden) error:nil];
        return std::unexpected{errorFrom(error)};
    }
}

Result<void> putInPlace(const path& staged, const path& place) {
    const auto rename = [&](unsigned int how) {
        return renamex_np(staged.c_str(), place.c_str(), how) == 0;
    };
    // Both renames are atomic, so two programs cannot both find the place empty.
    if (rename(RENAME_SWAP) || (errno == ENOENT && rename(RENAME_EXCL))) return {};
    return std::unexpected{
        PlatformError{.domain = PlatformError::Domain::posix,
                      .code = errno,
                      .description = place.native() + ": " + std::strerror(errno)}};
}

void discardStaged(const path& folder) {
    std::error_code error;
    for (std::filesystem::directory_iterator place{folder, error}, end; !error && place != end;
         place.increment(error))
        if (place->path().filename().native().starts_with(kHiddenPrefix))
            [NSFileManager.defaultManager removeItemAtURL:urlFrom(place->path()) error:nil];
}

}  // namespace

// Reads the file directly, because the system's bundle objects cache their first read.
PropertyDictionary propertiesOfBundleMacOS(const std::filesystem::path& bundle) {
    @autoreleasepool {
        NSData* data = [NSData dataWithContentsOfURL:urlFrom(bundle / "Contents" / "Info.plist")
                                             options:0
                                               error:nil];
        if (!data) return {};
        auto list =
            valueFrom([NSPropertyListSerialization propertyListWithData:data
                                                                options:NSPropertyListImmutable
                                                                 format:nil
                                                                  error:nil]);
        if (!list || !list->as<PropertyDictionary>()) return {};
        return std::get<PropertyDictionary>(std::move(list->value));
    }
}

BundleFiles makeLiveBundleFiles() {
    return {.properties = propertiesOfBundleMacOS,
            .stage = stage,
            .putInPlace = putInPlace,
            .discardStaged = discardStaged};
}

}  // namespace quorvane
