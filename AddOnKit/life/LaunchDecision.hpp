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

// Main thread only.
struct LaunchPerformer {
    std::vector<std::string> arguments;
    UserDefaults defaults;  // the add-on's own
    std::optional<UserDefaults> sharedDefaults;
    std::filesystem::path bundle;
    // The identifier of the bundle at a path; nullopt when it cannot be read.
    std::function<std::optional<std::string>(const std::filesystem::path&)> identity;
    Logger log;  // category "removal"

    // May clear the add-on's preferences, to drop a flag that another copy of the add-on left
    // there.
    LaunchDecision decide() const;
    // Decides, prepares for running if needed, and calls exactly one of the three.
    void perform(const std::function<void()>& finishRemoval, const std::function<void()>& uninstall,
                 const std::function<void()>& run) const;

private:
    bool isPendingRemovalOfThisBundle() const;
    void voidRemovalRequest() const;
};

}  // namespace quorvane
