// Launcher of applications, which outlive the caller.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/OpenApplication.hpp"

namespace quorvane {

// Starts the bundle's executable as a child of init or the session's subreaper: in its own session
// and the root folder, with default signals and only /dev/null open. Returns once it has started or
// failed to.
Result<OpenCommandEnd> openApplication(const std::filesystem::path& bundle,
                                       const std::vector<std::string>& arguments);

}  // namespace quorvane
