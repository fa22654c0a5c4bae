// Launcher for programs that outlive the caller.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/PlatformError.hpp"

namespace quorvane {

// Starts the program as a child of the system's or the session's first process, in its own session,
// in the root folder, with default signals and only /dev/null open. Returns once it has started or
// failed to.
Result<void> startDetached(const std::filesystem::path& executable,
                           std::vector<std::string> arguments);

}  // namespace quorvane
