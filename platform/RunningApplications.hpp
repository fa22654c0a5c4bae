// The running applications of this user, by the identifier of their bundles.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/Clock.hpp"

namespace quorvane {

struct RunningCopy {
    std::int32_t pid = 0;
    std::optional<WallTime> launchDate;  // comparable with those of the same process's other looks
    bool operator==(const RunningCopy&) const = default;
};

// Main thread only.
struct RunningApplications {
    // Those that have not ended, this process among them if it is one.
    std::function<std::vector<RunningCopy>(const std::string& bundleIdentifier)> running;
    std::function<RunningCopy()> current;
    // Asks the application to quit in order; it may refuse. Nothing happens when it has ended.
    std::function<void(std::int32_t pid)> terminate;
};

}  // namespace quorvane
