// File operations that removing the add-on needs.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "platform/PlatformError.hpp"

namespace quorvane {

// Main thread only.
struct FileManagerClient {
    static constexpr int kNoSuchFile = 4;  // the cocoa domain's code for a missing file

    // Removes the item recursively. A symbolic link itself is removed, never its target.
    std::function<Result<void>(const std::filesystem::path&)> removeItem;
    std::function<bool(const std::filesystem::path&)> fileExists;
    // The bundle identifier of the bundle at a path; nullopt when it cannot be read.
    std::function<std::optional<std::string>(const std::filesystem::path&)> identity;
};

}  // namespace quorvane
