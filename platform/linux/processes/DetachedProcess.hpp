// Launcher of applications, which outlive the caller.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/OpenApplication.hpp"

namespace quorvane {

// Starts the program that the bundle's property list names as a child of the system's or the
// session's first process, in its own session, in the root folder, with default signals and only
// /dev/null open. Returns once it has started or failed to.
Result<OpenCommandEnd> openApplication(const std::filesystem::path& bundle,
                                       const std::vector<std::string>& arguments);

}  // namespace quorvane
