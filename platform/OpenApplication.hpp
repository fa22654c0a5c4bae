// The system's way to launch an application bundle.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "platform/PlatformError.hpp"

namespace quorvane {

// How the launcher ended; status 0 on systems without such a command.
struct OpenCommandEnd {
    std::int32_t status = 0;
    std::string output;  // all of its output
};

// Starts a new instance of the application in the background, not as a child of the caller, and
// returns once it has started. Fails when the launcher or the application's program cannot be run.
using OpenApplication = std::function<Result<OpenCommandEnd>(
    const std::filesystem::path& bundle, const std::vector<std::string>& arguments)>;

}  // namespace quorvane
