// Launcher that starts an application bundle as a new background instance, not a child of the
// caller.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/OpenApplication.hpp"
#include "platform/PlatformError.hpp"

namespace quorvane {

struct DetachedLaunch {
    OpenApplication open;

    // Fails with the error that kept the system's launcher from running. If the launcher exited
    // with a status other than 0, the error holds that status and the launcher's output.
    Result<void> launch(const std::filesystem::path& bundle,
                        const std::vector<std::string>& arguments) const;
};

}  // namespace quorvane
