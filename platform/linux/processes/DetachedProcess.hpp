// Starts a program that lives on its own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/PlatformError.hpp"

namespace quorvane {

// As the child of the system's or the session's first process, in a session of its own, in the root
// folder, with the usual signals and nothing open but /dev/null. Returns once it has begun or could
// not.
Result<void> startDetached(const std::filesystem::path& executable,
                           std::vector<std::string> arguments);

}  // namespace quorvane
