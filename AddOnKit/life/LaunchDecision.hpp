// Purpose of a launch of the add-on: to run, to finish an interrupted removal, or to uninstall.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Log.hpp"
#include "platform/UserDefaults.hpp"

namespace quorvane {

enum class LaunchDecision { run, finishRemoval, uninstall };

struct LaunchInputs {
    std::vector<std::string> arguments;
    UserDefaults defaults;  // the add-on's own
    std::optional<UserDefaults> sharedDefaults;
    std::filesystem::path bundle;
    // The identifier of the bundle at a path; nullopt when it cannot be read.
    std::function<std::optional<std::string>(const std::filesystem::path&)> identity;
    Logger log;  // category "removal"
};

// Main thread only. When the add-on is to run, clears the remains of earlier removals: a flag of
// another copy, and for a new installation the request that it supersedes.
LaunchDecision decideLaunch(const LaunchInputs& launch);

}  // namespace quorvane
