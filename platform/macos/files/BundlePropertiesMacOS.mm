#if !__has_feature(objc_arc)
#error "This file needs automatic reference counting."
#endif

#include "platform/macos/files/BundlePropertiesMacOS.hpp"

#import <Foundation/Foundation.h>

#include "platform/macos/foundation/FoundationValues.hpp"

namespace quorvane {

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

}  // namespace quorvane
