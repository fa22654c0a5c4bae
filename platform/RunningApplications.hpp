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
    std::optional<WallTime> launchDate;  // comparable with other dates that this process read
    bool operator==(const RunningCopy&) const = default;
};

// Main thread only.
struct RunningApplications {
    // The copies that have not exited, including this process if it is one.
    std::function<std::vector<RunningCopy>(const std::string& bundleIdentifier)> running;
    std::function<RunningCopy()> current;
    // Asks the application to quit in an orderly way; it may refuse. Does nothing when it has
    // already exited.
    std::function<void(std::int32_t pid)> terminate;
};

}  // namespace quorvane
