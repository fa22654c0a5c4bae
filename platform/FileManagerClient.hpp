// The file operations that a removal takes.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "platform/PlatformError.hpp"

namespace quorvane {

// Main thread only.
struct FileManagerClient {
    static constexpr int kNoSuchFile = 4;  // the code, in the cocoa domain, of what is not there

    // With all below it. A symbolic link is removed itself, never what it leads to.
    std::function<Result<void>(const std::filesystem::path&)> removeItem;
    std::function<bool(const std::filesystem::path&)> fileExists;
    // The identifier of the bundle at a place; nothing when it cannot be read.
    std::function<std::optional<std::string>(const std::filesystem::path&)> identity;
};

}  // namespace quorvane
