// Putting an application's bundle in its place, so that at any moment the old one or the whole new
// one stands there.
#pragma once

#include <filesystem>
#include <functional>

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Any thread; one installer at a time in a folder.
struct BundleFiles {
    // The bundle's property list; empty when it cannot be read.
    std::function<PropertyDictionary(const std::filesystem::path& bundle)> properties;
    // Copies the bundle to a hidden place in the folder, which is made if it is missing, and writes
    // the copy to the disk. The copy's path; after a failure none is left.
    std::function<Result<std::filesystem::path>(const std::filesystem::path& bundle,
                                                const std::filesystem::path& folder)>
        stage;
    // The copy takes the place, in one step. What stood there is where the copy was.
    std::function<Result<void>(const std::filesystem::path& staged,
                               const std::filesystem::path& place)>
        putInPlace;
    // Removes every hidden place in the folder, those of installers that were cut off too.
    std::function<void(const std::filesystem::path& folder)> discardStaged;
};

BundleFiles makeLiveBundleFiles();

}  // namespace quorvane
