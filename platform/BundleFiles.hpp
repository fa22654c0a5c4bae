// Operations that install an application's bundle atomically: the destination always holds the
// whole old bundle or the whole new one.
#pragma once

#include <filesystem>
#include <functional>

#include "platform/PlatformError.hpp"
#include "platform/PropertyValue.hpp"

namespace quorvane {

// Any thread; one installer per folder at a time.
struct BundleFiles {
    // The bundle's property list; empty when it cannot be read.
    std::function<PropertyDictionary(const std::filesystem::path& bundle)> properties;
    // Copies the bundle into a hidden folder below `folder`, creates `folder` if it is missing, and
    // syncs the copy to disk. Returns the copy's path. A failure leaves no copy behind.
    std::function<Result<std::filesystem::path>(const std::filesystem::path& bundle,
                                                const std::filesystem::path& folder)>
        stage;
    // Moves the copy to `place` in one step. A bundle that was at `place` moves to the copy's path.
    std::function<Result<void>(const std::filesystem::path& staged,
                               const std::filesystem::path& place)>
        putInPlace;
    // Removes every hidden copy in the folder, including those of interrupted installers.
    std::function<void(const std::filesystem::path& folder)> discardStaged;
};

BundleFiles makeLiveBundleFiles();

}  // namespace quorvane
